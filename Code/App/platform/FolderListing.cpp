#include "platform/FolderListing.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

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

/// The next eight bytes behind `skip`, so that they compare as numbers as they do as bytes.
std::uint64_t sortKey(const std::string& name, std::size_t skip) {
    std::uint64_t key = 0;
    const std::size_t count = std::min<std::size_t>(8, name.size() - skip);
    std::memcpy(&key, name.data() + skip, count);
    return __builtin_bswap64(key);
}

std::size_t commonPrefix(const std::vector<FolderEntry>& entries) {
    const std::string& first = entries.front().name;
    std::size_t length = first.size();
    for (const FolderEntry& entry : entries) {
        const std::size_t limit = std::min(length, entry.name.size());
        length = 0;
        while (length < limit && entry.name[length] == first[length])
            ++length;
    }
    return length;
}

void addEntries(int folder, const char* buffer, std::size_t filled, std::vector<FolderEntry>& into) {
    for (std::size_t at = 0; at < filled;) {
        const auto* entry = reinterpret_cast<const dirent64*>(buffer + at);
        const char* name = buffer + at + offsetof(dirent64, d_name);
        at += entry->d_reclen;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        into.push_back(
            {name, entry->d_type == DT_UNKNOWN ? askedKind(folder, name) : kindOfType(entry->d_type)});
    }
}

} // namespace

void sortByName(std::vector<FolderEntry>& entries) {
    if (entries.size() < 2)
        return;
    const std::size_t skip = commonPrefix(entries);
    std::vector<std::pair<std::uint64_t, std::uint32_t>> order;
    order.reserve(entries.size());
    for (const FolderEntry& entry : entries)
        order.emplace_back(sortKey(entry.name, skip), static_cast<std::uint32_t>(order.size()));
    std::sort(order.begin(), order.end(), [&entries](const auto& a, const auto& b) {
        if (a.first != b.first)
            return a.first < b.first;
        return entries[a.second].name < entries[b.second].name;
    });
    std::vector<FolderEntry> sorted;
    sorted.reserve(entries.size());
    for (const auto& place : order)
        sorted.push_back(std::move(entries[place.second]));
    entries.swap(sorted);
}

int readFolder(int folder, std::vector<FolderEntry>& into) {
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
    sortByName(into);
    return 0;
}

} // namespace tavrin
