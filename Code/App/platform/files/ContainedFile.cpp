#include "platform/files/ContainedFile.h"

#include "platform/files/Descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin {

namespace {

/// Without O_NONBLOCK the opening of a pipe would wait for a writer.
constexpr int fileFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
constexpr int folderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;

int readAll(int file, std::string& into, std::size_t limit) {
    into.clear();
    char buffer[65536];
    for (;;) {
        const ssize_t count = ::read(file, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return errno;
        if (count == 0)
            return 0;
        if (into.size() + static_cast<std::size_t>(count) > limit)
            return EFBIG;
        into.append(buffer, static_cast<std::size_t>(count));
    }
}

} // namespace

int readContainedFile(const std::string& folder, std::string_view relativePath, std::string& into,
                      std::size_t limit) {
    Descriptor place(::open(folder.c_str(), folderFlags));
    if (!place)
        return errno;
    for (std::size_t slash; (slash = relativePath.find('/')) != std::string_view::npos;
         relativePath.remove_prefix(slash + 1)) {
        const std::string component(relativePath.substr(0, slash));
        Descriptor next(::openat(place.get(), component.c_str(), folderFlags | O_NOFOLLOW));
        if (!next)
            return errno;
        place = std::move(next);
    }
    const Descriptor file(::openat(place.get(), std::string(relativePath).c_str(), fileFlags));
    if (!file)
        return errno;
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        return errno;
    if (!S_ISREG(status.st_mode))
        return EINVAL;
    return readAll(file.get(), into, limit);
}

} // namespace tavrin
