#include "store/sources/SourceItemTable.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace tavrin {

namespace {

/// The path up to its last slash; none where there is none.
std::optional<std::string_view> folderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? std::nullopt : std::optional(path.substr(0, slash));
}

} // namespace

void SourceItemTable::apply(const SourceItemChange& change) {
    if (const auto* insertion = std::get_if<SourceItemInsertion>(&change))
        insert(insertion->item);
    else if (const auto* deletion = std::get_if<SourceItemDeletion>(&change))
        remove(deletion->path);
    else if (const auto* reading = std::get_if<SourceItemReading>(&change))
        setRead(reading->path, reading->readInRoot, reading->readInSubfolders);
}

void SourceItemTable::insert(const SourceItem& item) {
    if (SourceItem* const known = find(item.path)) {
        *known = item;
        return;
    }
    items.push_back(item);
    places.add(places.hashOf<char>(item.path), static_cast<std::uint32_t>(items.size()));
    for (auto folder = folderOf(item.path); folder; folder = folderOf(*folder)) {
        if (const auto known = holding.find(*folder); known != holding.end()) {
            ++known->second;
            return;
        }
        holding.emplace(*folder, 1);
    }
}

void SourceItemTable::remove(std::string_view path) {
    SourceItem* const item = find(path);
    if (item == nullptr)
        return;
    ++removed;
    for (auto folder = folderOf(item->path); folder; folder = folderOf(*folder)) {
        const auto holder = holding.find(*folder);
        if (--holder->second > 0)
            break;
        holding.erase(holder);
    }
    *item = {};
    if (++gaps > items.size() / 2)
        closeGaps();
}

void SourceItemTable::closeGaps() {
    std::erase_if(items, [](const SourceItem& item) { return item.path.empty(); });
    gaps = 0;
    places.reset(items.size());
    for (std::size_t at = 0; at < items.size(); ++at)
        places.add(places.hashOf<char>(items[at].path), static_cast<std::uint32_t>(at + 1));
}

void SourceItemTable::setRead(std::string_view path, bool readInRoot, bool readInSubfolders) {
    if (SourceItem* const item = find(path)) {
        item->readInRoot = readInRoot;
        item->readInSubfolders = readInSubfolders;
    }
}

const SourceItem* SourceItemTable::find(std::string_view path) const {
    const std::uint32_t* const place =
        places.find(places.hashOf(path), [&](std::uint32_t at) { return items[at - 1].path == path; });
    return place == nullptr ? nullptr : &items[*place - 1];
}

std::vector<SourceItem> SourceItemTable::inOrderAdded() const {
    std::vector<SourceItem> result;
    result.reserve(count());
    std::ranges::copy_if(items, std::back_inserter(result),
                         [](const SourceItem& item) { return !item.path.empty(); });
    return result;
}

} // namespace tavrin
