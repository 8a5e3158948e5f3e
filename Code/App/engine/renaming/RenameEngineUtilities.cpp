#include "engine/renaming/RenameEngineUtilities.h"

#include "actions/SortBasedAction.h"
#include "store/contexts/StoreContext.h"
#include "support/application/DebugLog.h"

#include <array>

namespace tavrin {

namespace {

constexpr std::array<SortDescriptor, 14> sortModes{{
    {NodeKey::name, true},
    {NodeKey::name, false},
    {NodeKey::modDate, true},
    {NodeKey::modDate, false},
    {NodeKey::crDate, true},
    {NodeKey::crDate, false},
    {NodeKey::size, true},
    {NodeKey::size, false},
    {NodeKey::exif, true},
    {NodeKey::exif, false},
    {NodeKey::smartName, true},
    {NodeKey::smartName, false},
    {NodeKey::random, false},
    {NodeKey::manualOrder, true},
}};

std::string_view entityName(NodeEntity entity) {
    switch (entity) {
    case NodeEntity::file:
        return "File";
    case NodeEntity::ghostNode:
        return "GhostNode";
    case NodeEntity::none:
        break;
    }
    return "Node";
}

} // namespace

std::optional<SortDescriptor> RenameEngineUtilities::sortDescriptorForMode(int mode) {
    if (mode < 0 || mode >= static_cast<int>(sortModes.size()))
        return std::nullopt;
    return sortModes[static_cast<std::size_t>(mode)];
}

RowValues RenameEngineUtilities::valuesFor(std::span<const SortDescriptor> order) {
    RowValues values = RowValues::none;
    for (const SortDescriptor& each : order) {
        if (each.key == NodeKey::modDate || each.key == NodeKey::crDate)
            values |= RowValues::ofStatus;
        else if (each.key == NodeKey::size)
            values |= RowValues::ofStatus | RowValues::folderSize;
        else if (each.key == NodeKey::exif)
            values |= RowValues::ofStatus | RowValues::shootingDate;
    }
    return values;
}

std::vector<SortDescriptor> RenameEngineUtilities::sortDescriptorsOf(const SortBasedAction& action) {
    std::vector<SortDescriptor> order;
    for (const std::int32_t mode : {action.getSortingMode(), action.getSortingMode2()}) {
        if (const auto descriptor = sortDescriptorForMode(mode))
            order.push_back(*descriptor);
    }
    return order;
}

std::string RenameEngineUtilities::contentsOfDatabaseAsString(StoreContext& context) {
    std::string text = fmt::format("EngineControl: {}\n", context.engineControl().totalNumberOfNodes);
    text += "sourceItems:\n";
    for (const SourceItem& item : context.sourceItems())
        text.append(item.path) += '\n';
    text += "\nNodes:\n";
    std::string path;
    for (const RowId id : context.fetch({FetchEntity::node, Predicate::always(), {}, 0})) {
        context.fullPath(id, path);
        text.append(entityName(context.row(id).entity)).append(" at ").append(path) += '\n';
    }
    debugLog("{}", text);
    return text;
}

} // namespace tavrin
