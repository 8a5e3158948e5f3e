#include "platform/files/FolderEntries.h"

#include <algorithm>
#include <cstring>

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

} // namespace tavrin
