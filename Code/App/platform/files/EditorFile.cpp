#include "platform/files/EditorFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <vector>

namespace tavrin {

namespace {

constexpr std::size_t usualLimit = 100'000'000; // bytes
constexpr const char* unfinished = ".unfinished";

std::string valueOf(const char* variable) {
    const char* const value = std::getenv(variable);
    return value ? value : "";
}

} // namespace

EditorFile::EditorFile(std::string_view folderPrefix, std::string fileName)
    : name(std::move(fileName)), mostBytes(usualLimit) {
    int error = ENOENT;
    for (const std::string& place : {valueOf("XDG_RUNTIME_DIR"), valueOf("TMPDIR"), std::string("/tmp")}) {
        if (!place.starts_with('/'))
            continue;
        folderPath = place + "/" + std::string(folderPrefix) + "-XXXXXX";
        if (::mkdtemp(folderPath.data())) { // which only its owner may enter
            directory =
                Descriptor(::open(folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            return;
        }
        error = errno;
    }
    throw std::system_error(error, std::generic_category());
}

EditorFile::~EditorFile() {
    std::error_code ignored;
    std::vector<std::filesystem::path> entries;
    for (std::filesystem::directory_iterator entry(folderPath, ignored), end; !ignored && entry != end;
         entry.increment(ignored))
        entries.push_back(entry->path());
    for (const auto& entry : entries)
        std::filesystem::remove(entry, ignored);
    std::filesystem::remove(folderPath, ignored);
}

/// A program that has the file open never sees a part of the text.
std::optional<EditorFile::Failure> EditorFile::write(std::string_view text) {
    mostBytes = std::max(usualLimit, 4 * text.size());
    ::unlinkat(directory.get(), unfinished, 0);
    int error = writeAs(unfinished, text);
    if (error == 0 && ::renameat(directory.get(), unfinished, directory.get(), name.c_str()) != 0)
        error = errno;
    return error == 0 ? std::nullopt : std::optional(Failure{Fault::unwritable, error});
}

int EditorFile::writeAs(const char* temporaryName, std::string_view text) const {
    const Descriptor file(::openat(directory.get(), temporaryName,
                                   O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file)
        return errno;
    while (!text.empty()) {
        const ssize_t written = ::write(file.get(), text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return errno;
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return 0;
}

std::variant<std::string, EditorFile::Failure> EditorFile::read() const {
    const Descriptor file(
        ::openat(directory.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file)
        return errno == ELOOP ? Failure{Fault::isLink} : Failure{Fault::gone, errno};
    struct stat found {};
    if (::fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode))
        return Failure{Fault::noFile};
    std::string text;
    std::array<char, 64 * 1024> buffer;
    for (;;) {
        const ssize_t length = ::read(file.get(), buffer.data(), buffer.size());
        if (length == 0)
            return text;
        if (length < 0 && errno != EINTR)
            return Failure{Fault::unreadable, errno};
        text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
        if (text.size() > mostBytes)
            return Failure{Fault::tooLong, 0, mostBytes};
    }
}

} // namespace tavrin
