#include "store/sources/SourceItemTable.h"

#include <algorithm>
#include <optional>
#include <utility>

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
    const Entry entry{nextOrder++, item.treatAsFolder, item.readInRoot, item.readInSubfolders, item.look};
    if (!items.insert_or_assign(item.path, entry).second)
        return;
    for (auto folder = folderOf(item.path); folder; folder = folderOf(*folder)) {
        if (const auto known = holding.find(*folder); known != holding.end()) {
            ++known->second;
            return;
        }
        holding.emplace(*folder, 1);
    }
}

void SourceItemTable::remove(std::string_view path) {
    const auto found = items.find(path);
    if (found == items.end())
        return;
    ++removed;
    for (auto folder = folderOf(found->first); folder; folder = folderOf(*folder)) {
        const auto holder = holding.find(*folder);
        if (--holder->second > 0)
            break;
        holding.erase(holder);
    }
    items.erase(found);
}

void SourceItemTable::setRead(std::string_view path, bool readInRoot, bool readInSubfolders) {
    if (const auto found = items.find(path); found != items.end()) {
        found->second.readInRoot = readInRoot;
        found->second.readInSubfolders = readInSubfolders;
    }
}

SourceItem SourceItemTable::itemOf(const std::string& path, const Entry& entry) {
    return {path, entry.treatAsFolder, entry.readInRoot, entry.readInSubfolders, entry.look};
}

std::vector<SourceItem> SourceItemTable::inOrderAdded() const {
    std::vector<std::pair<std::uint64_t, decltype(items)::const_pointer>> ordered;
    ordered.reserve(items.size());
    for (const auto& item : items)
        ordered.emplace_back(item.second.order, &item);
    std::ranges::sort(ordered);
    std::vector<SourceItem> result;
    result.reserve(ordered.size());
    for (const auto& [order, item] : ordered)
        result.push_back(itemOf(item->first, item->second));
    return result;
}

} // namespace tavrin
