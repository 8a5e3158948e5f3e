#include "engine/reading/FolderAliases.h"

#include "store/contexts/StoreContext.h"

#include <algorithm>
#include <string>

namespace tavrin {

namespace {

std::uint64_t keyOf(const FileIdentity& folder, std::string_view name) {
    return std::hash<std::string_view>{}(name) ^ folder.inode * 0x9E3779B97F4A7C15U ^ folder.device;
}

} // namespace

FolderAliases::FolderAliases(StoreContext& store) : context(store) {
    for (const RowId folder :
         context.fetch({FetchEntity::node, Predicate::isTrue(NodeKey::treatAsFolder), {}, 0}))
        if (context.childCount(folder) > 0)
            folders.emplace(context.row(folder).identity(), folder);
}

bool FolderAliases::mayBeShared(RowId folder, const FileIdentity& identity) const {
    const auto [begin, end] = folders.equal_range(identity);
    return identity.isKnown() &&
           std::any_of(begin, end, [&](const auto& each) { return each.second != folder; });
}

bool FolderAliases::enter(RowId folder, const FileIdentity& identity) {
    if (!identity.isKnown())
        return false;
    const auto [begin, end] = folders.equal_range(identity);
    if (std::none_of(begin, end, [&](const auto& each) { return each.second == folder; }))
        folders.emplace(identity, folder);
    if (!mayBeShared(folder, identity))
        return false;
    const auto [first, last] = folders.equal_range(identity);
    for (auto each = first; each != last; ++each)
        if (withNames.insert(each->second).second)
            addChildren(each->second, identity);
    return true;
}

void FolderAliases::addChildren(RowId folder, const FileIdentity& identity) {
    for (const RowId child : context.children(folder))
        add(identity, std::string(context.component(child)), child);
}

RowId FolderAliases::find(RowId folder, const FileIdentity& identity, std::string_view name) {
    const auto [first, last] = rows.equal_range(keyOf(identity, name));
    for (auto each = first; each != last; ++each) {
        const RowId row = each->second;
        const RowId parent = context.row(row).parent;
        if (parent != folder && context.component(row) == name && context.row(parent).identity() == identity)
            return row;
    }
    return noRow;
}

void FolderAliases::add(const FileIdentity& identity, std::string_view name, RowId row) {
    rows.emplace(keyOf(identity, name), row);
}

} // namespace tavrin
