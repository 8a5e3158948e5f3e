#include "store/sources/SourceItemTable.h"

#include <algorithm>
#include <utility>

namespace tavrin {

void SourceItemTable::apply(const SourceItemChange& change) {
    if (const auto* insertion = std::get_if<SourceItemInsertion>(&change))
        insert(insertion->item);
    else if (const auto* deletion = std::get_if<SourceItemDeletion>(&change))
        remove(deletion->path);
    else if (const auto* reading = std::get_if<SourceItemReading>(&change))
        setRead(reading->path, reading->readInRoot, reading->readInSubfolders);
}

void SourceItemTable::insert(const SourceItem& item) {
    const Entry entry{nextOrder++, item.treatAsFolder, item.readInRoot, item.readInSubfolders};
    items.insert_or_assign(item.path, entry);
}

void SourceItemTable::remove(std::string_view path) {
    if (const auto found = items.find(path); found != items.end())
        items.erase(found);
}

void SourceItemTable::setRead(std::string_view path, bool readInRoot, bool readInSubfolders) {
    if (const auto found = items.find(path); found != items.end()) {
        found->second.readInRoot = readInRoot;
        found->second.readInSubfolders = readInSubfolders;
    }
}

std::optional<SourceItem> SourceItemTable::find(std::string_view path) const {
    const auto found = items.find(path);
    if (found == items.end())
        return std::nullopt;
    const Entry& entry = found->second;
    return SourceItem{found->first, entry.treatAsFolder, entry.readInRoot, entry.readInSubfolders};
}

bool SourceItemTable::hasBelow(std::string_view folder) const {
    const std::string prefix = std::string(folder) + '/';
    const auto item = items.lower_bound(prefix);
    return item != items.end() && item->first.starts_with(prefix);
}

std::vector<SourceItem> SourceItemTable::inOrderAdded() const {
    std::vector<std::pair<std::uint64_t, SourceItem>> ordered;
    ordered.reserve(items.size());
    for (const auto& [path, entry] : items)
        ordered.emplace_back(entry.order,
                             SourceItem{path, entry.treatAsFolder, entry.readInRoot, entry.readInSubfolders});
    std::sort(ordered.begin(), ordered.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<SourceItem> result;
    result.reserve(ordered.size());
    for (auto& [order, item] : ordered)
        result.push_back(std::move(item));
    return result;
}

} // namespace tavrin
