#include "platform/files/FolderListing.h"

#include "platform/files/FolderEntries.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace tavrin {

namespace {

constexpr std::size_t bufferSize = 64 * 1024;

FileStatus::Kind kindOfType(unsigned char type) {
    if (type == DT_REG)
        return FileStatus::Kind::file;
    if (type == DT_DIR)
        return FileStatus::Kind::folder;
    return type == DT_LNK ? FileStatus::Kind::link : FileStatus::Kind::other;
}

/// For file systems that leave the type out of their listings.
FileStatus::Kind askedKind(int folder, const char* name) {
    struct stat status {};
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return FileStatus::Kind::other;
    return kindOfType(static_cast<unsigned char>(IFTODT(status.st_mode)));
}

void addEntries(int folder, const char* buffer, std::size_t filled, FolderEntries& into) {
    for (std::size_t at = 0; at < filled;) {
        const auto* entry = reinterpret_cast<const dirent64*>(buffer + at);
        const char* name = buffer + at + offsetof(dirent64, d_name);
        at += entry->d_reclen;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        into.add({name, entry->d_type == DT_UNKNOWN ? askedKind(folder, name) : kindOfType(entry->d_type),
                  entry->d_ino});
    }
}

} // namespace

int readFolder(int folder, FolderEntries& into) {
    into.clear();
    const auto buffer = std::make_unique_for_overwrite<std::uint64_t[]>(bufferSize / sizeof(std::uint64_t));
    char* bytes = reinterpret_cast<char*>(buffer.get());
    for (;;) {
        const long filled = ::syscall(SYS_getdents64, folder, bytes, bufferSize);
        if (filled < 0)
            return errno;
        if (filled == 0)
            break;
        addEntries(folder, bytes, static_cast<std::size_t>(filled), into);
    }
    into.sort();
    return 0;
}

} // namespace tavrin
