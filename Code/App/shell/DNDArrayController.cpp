#include "shell/DNDArrayController.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "shell/FrontEnd.h"
#include "shell/PreviewControl.h"
#include "shell/SourceCommands.h"
#include "shell/StoreOwner.h"
#include "store/StoreContext.h"
#include "store/StoreError.h"
#include "support/DebugLog.h"
#include "support/Text.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <mutex>
#include <utility>

namespace tavrin {

namespace {

const Alert someItemsNotRemoved{.kind = AlertKind::itemsNotRemoved,
                                .style = AlertStyle::informational,
                                .title = "Some items could not be removed.",
                                .text = "Items in subfolders cannot be removed individually.",
                                .buttons = {"OK"}};

/// The rows in their new order: those in front of the place, the moved ones, and those behind.
std::vector<RowId> rearranged(const std::vector<RowId>& rows, const DNDArrayController::Indexes& moved,
                              std::size_t place) {
    std::vector<RowId> result;
    result.reserve(rows.size());
    const auto isMoved = [&](std::size_t index) { return std::ranges::binary_search(moved, index); };
    const auto append = [&](std::size_t from, std::size_t to) {
        for (std::size_t index = from; index < to; ++index)
            if (!isMoved(index))
                result.push_back(rows[index]);
    };
    place = std::min(place, rows.size());
    append(0, place);
    for (const std::size_t index : moved)
        if (index < rows.size())
            result.push_back(rows[index]);
    append(place, rows.size());
    return result;
}

/// Each row with its place, in ascending order of the ids, which is the quickest to write them in.
std::vector<std::pair<RowId, std::int32_t>> placesById(const std::vector<RowId>& order) {
    std::vector<std::pair<RowId, std::int32_t>> places;
    places.reserve(order.size());
    for (const RowId id : order)
        places.emplace_back(id, static_cast<std::int32_t>(places.size()));
    std::ranges::sort(places);
    return places;
}

} // namespace

bool DNDArrayController::writeRowsWithIndexes(Indexes indexes) {
    if (indexes.empty())
        return false;
    shouldDeleteRows = true;
    draggedIndexes = std::move(indexes);
    return true;
}

bool DNDArrayController::validateDrop(bool isFromThisList, bool isBetweenRows) const {
    return !isFromThisList || isBetweenRows;
}

void DNDArrayController::acceptFiles(const std::vector<std::string>& paths) {
    units.sources.addFilePaths(paths, true);
    units.preview.showPreview();
    cancelDrag();
}

void DNDArrayController::acceptRows(std::size_t row) {
    debugLog("internal drag");
    debugLog("index set: {}", fmt::join(draggedIndexes, " "));
    insertManualIndices(draggedIndexes, row);
    cancelDrag();
}

void DNDArrayController::cancelDrag() {
    shouldDeleteRows = false;
    draggedIndexes.clear();
}

void DNDArrayController::insertManualIndices(const Indexes& indexes, std::size_t row) {
    logOrder("BEFORE Insertion:");
    const std::vector<RowId> order =
        rearranged(units.preview.nodeController().arrangedObjects(), indexes, row);
    try {
        StoreContext& context = units.store.managedObjectContext();
        const std::lock_guard lock(context.mutex());
        for (const auto& [id, place] : placesById(order))
            if (context.exists(id) && context.row(id).manualOrder != place)
                context.change(id).manualOrder = place;
        context.commit();
    } catch (const StoreError& error) {
        services.frontEnd.presentError(error.what());
    }
    logOrder("AFTER Insertion:");
    services.settings.setAutomaticSorting(false);
    units.preview.refreshPreview();
}

bool DNDArrayController::deleteRowsIfAppropriate() {
    if (!shouldDeleteRows)
        return false;
    const Indexes removable = filterOutInappropriateIndexes(draggedIndexes);
    if (!removable.empty())
        units.sources.removeFile(idsOf(removable));
    if (removable.size() < draggedIndexes.size())
        services.frontEnd.showAlert(someItemsNotRemoved, [](AlertAnswer) {});
    shouldDeleteRows = !removable.empty();
    draggedIndexes.clear();
    return shouldDeleteRows;
}

DNDArrayController::Indexes DNDArrayController::filterOutInappropriateIndexes(const Indexes& indexes) {
    Indexes removable;
    std::ranges::copy_if(indexes, std::back_inserter(removable), [this](std::size_t index) {
        const auto row = units.preview.nodeController().rowAt(index);
        return row && row->root;
    });
    return removable;
}

std::vector<RowId> DNDArrayController::idsOf(const Indexes& indexes) {
    const std::vector<RowId>& rows = units.preview.nodeController().arrangedObjects();
    std::vector<RowId> ids;
    for (const std::size_t index : indexes)
        if (index < rows.size())
            ids.push_back(rows[index]);
    return ids;
}

void DNDArrayController::logOrder(const char* title) {
    if (!debugLogIsOn())
        return;
    debugLog("{}", title);
    StoreContext& context = units.store.managedObjectContext();
    for (const RowId id : units.preview.nodeController().arrangedObjects()) {
        const std::lock_guard lock(context.mutex());
        if (context.exists(id))
            debugLog("{} ({})", text::toUtf8(context.name(id)), context.row(id).manualOrder);
    }
}

} // namespace tavrin
