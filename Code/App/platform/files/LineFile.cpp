#include "platform/files/LineFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin {

int LineFile::open(const std::string& path) {
    file = Descriptor(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file)
        return errno;
    struct stat status {};
    int error = ::fstat(file.get(), &status) != 0 ? errno : 0;
    if (error == 0 && !S_ISREG(status.st_mode))
        error = EINVAL;
    if (error == 0 && status.st_uid != ::geteuid())
        error = EPERM;
    if (error != 0)
        file.reset();
    rewind();
    return error;
}

void LineFile::rewind() {
    buffer.clear();
    used = 0;
    offset = 0;
    if (file)
        static_cast<void>(::lseek(file.get(), 0, SEEK_SET));
}

bool LineFile::next(std::string_view& line) {
    for (std::size_t searched = used;;) {
        const std::size_t end = buffer.find('\n', searched);
        if (end != std::string::npos) {
            line = std::string_view(buffer).substr(used, end - used);
            offset += line.size() + 1;
            used = end + 1;
            return true;
        }
        searched = buffer.size() - used;
        if (searched > longestLine || !fill())
            return false;
    }
}

/// What is left of the buffer moves to its front.
bool LineFile::fill() {
    if (!file)
        return false;
    // Many readers want the first lines alone.
    const std::size_t step = offset == 0 && buffer.empty() ? 4096 : 256 * 1024;
    buffer.erase(0, used);
    used = 0;
    const std::size_t left = buffer.size();
    buffer.resize(left + step);
    ssize_t got = 0;
    do {
        got = ::read(file.get(), buffer.data() + left, step);
    } while (got < 0 && errno == EINTR);
    buffer.resize(left + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    return got > 0;
}

std::uint64_t LineFile::size() const {
    struct stat status {};
    return file && ::fstat(file.get(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

std::string LineFile::tail(std::size_t length) const {
    const std::uint64_t whole = size();
    std::string end(std::min<std::uint64_t>(length, whole), '\0');
    const ssize_t got = ::pread(file.get(), end.data(), end.size(), static_cast<off_t>(whole - end.size()));
    end.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    return end;
}

bool LineFile::isHeld() const {
    if (!file || ::flock(file.get(), LOCK_SH | LOCK_NB) != 0)
        return errno == EWOULDBLOCK;
    static_cast<void>(::flock(file.get(), LOCK_UN));
    return false;
}

} // namespace tavrin
