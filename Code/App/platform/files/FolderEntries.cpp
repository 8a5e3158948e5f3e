#include "platform/files/FolderEntries.h"

#include <algorithm>
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

/// The next eight bytes behind `skip`, so that they compare as numbers as they do as bytes.
std::uint64_t sortKey(std::string_view name, std::size_t skip) {
    std::uint64_t key = 0;
    std::memcpy(&key, name.data() + skip, std::min<std::size_t>(8, name.size() - skip));
    return __builtin_bswap64(key);
}

} // namespace

void FolderEntries::clear() {
    names.clear();
    places.clear();
}

void FolderEntries::add(const FolderEntry& entry) {
    places.push_back({0, entry.inode, static_cast<std::uint32_t>(names.size()),
                      static_cast<std::uint16_t>(entry.name.size()), entry.kind});
    names += entry.name;
}

std::size_t FolderEntries::commonPrefix() const {
    const std::string_view first = nameAt(places.front());
    std::size_t length = first.size();
    for (const Place& place : places) {
        const std::string_view name = nameAt(place);
        const std::size_t limit = std::min(length, name.size());
        length = static_cast<std::size_t>(
            std::mismatch(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(limit), name.begin())
                .first -
            first.begin());
    }
    return length;
}

void FolderEntries::sort() {
    if (places.empty())
        return;
    const std::size_t skip = commonPrefix();
    for (Place& place : places)
        place.key = sortKey(nameAt(place), skip);
    std::sort(places.begin(), places.end(), [this](const Place& a, const Place& b) {
        return a.key != b.key ? a.key < b.key : nameAt(a) < nameAt(b);
    });
}

bool FolderEntries::contains(std::string_view name) const {
    const auto found = std::lower_bound(
        places.begin(), places.end(), name,
        [this](const Place& place, std::string_view wanted) { return nameAt(place) < wanted; });
    return found != places.end() && nameAt(*found) == name;
}

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
