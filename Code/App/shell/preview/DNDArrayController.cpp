#include "shell/preview/DNDArrayController.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "shell/asking/FrontEnd.h"
#include "shell/commands/SourceCommands.h"
#include "shell/preview/PreviewControl.h"
#include "shell/start/StoreOwner.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/StoreError.h"
#include "support/application/DebugLog.h"
#include "support/text/Text.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <iterator>
#include <mutex>
#include <unordered_set>
#include <utility>

namespace tavrin {

namespace {

const Alert someItemsNotRemoved{.kind = AlertKind::itemsNotRemoved,
                                .style = AlertStyle::informational,
                                .title = "Some items could not be removed.",
                                .text = "Items in subfolders cannot be removed individually.",
                                .buttons = {"OK"}};

/// Indexes of the rows among these in ascending order, those that are gone left out.
std::vector<std::size_t> indexesOf(const std::vector<RowId>& wanted, const std::vector<RowId>& rows) {
    const std::unordered_set<RowId> isWanted(wanted.begin(), wanted.end());
    std::vector<std::size_t> indexes;
    for (std::size_t index = 0; index < rows.size(); ++index)
        if (isWanted.contains(rows[index]))
            indexes.push_back(index);
    return indexes;
}

/// The rows in their new order: those in front of the place, the moved ones, and those behind.
std::vector<RowId> rearranged(const std::vector<RowId>& rows, const std::vector<std::size_t>& moved,
                              std::size_t place) {
    std::vector<RowId> result;
    result.reserve(rows.size());
    const auto isMoved = [&](std::size_t index) { return std::ranges::binary_search(moved, index); };
    const auto append = [&](std::size_t from, std::size_t to) {
        for (std::size_t index = from; index < to; ++index)
            if (!isMoved(index))
                result.push_back(rows[index]);
    };
    append(0, place);
    for (const std::size_t index : moved)
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

bool DNDArrayController::writeRows(std::vector<RowId> rows) {
    if (rows.empty())
        return false;
    shouldDeleteRows = true;
    draggedRows = std::move(rows);
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

void DNDArrayController::acceptRows(Place place) {
    debugLog("internal drag");
    insertRows(draggedRows, place);
    cancelDrag();
}

void DNDArrayController::cancelDrag() {
    shouldDeleteRows = false;
    draggedRows.clear();
}

void DNDArrayController::insertRows(const std::vector<RowId>& moved, Place place) {
    const std::vector<RowId>& rows = units.preview.nodeController().arrangedObjects();
    const auto found = std::ranges::find(rows, place.row);
    if (place.row != noRow && found == rows.end())
        return;
    const auto index =
        static_cast<std::size_t>(found - rows.begin()) + (found != rows.end() && place.isBehind);
    const std::vector<std::size_t> indexes = indexesOf(moved, rows);
    debugLog("index set: {}", fmt::join(indexes, " "));
    logOrder("BEFORE Insertion:");
    const std::vector<RowId> order = rearranged(rows, indexes, index);
    try {
        StoreContext& context = units.store.managedObjectContext();
        const std::lock_guard lock(context.mutex());
        for (const auto& [id, number] : placesById(order))
            if (context.exists(id) && context.row(id).manualOrder != number)
                context.change(id).manualOrder = number;
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
    const std::vector<RowId> removable = filterOutInappropriateRows(draggedRows);
    if (!removable.empty())
        units.sources.removeFile(removable);
    if (removable.size() < draggedRows.size())
        services.frontEnd.showAlert(someItemsNotRemoved, [](AlertAnswer) {});
    shouldDeleteRows = !removable.empty();
    draggedRows.clear();
    return shouldDeleteRows;
}

std::vector<RowId> DNDArrayController::filterOutInappropriateRows(const std::vector<RowId>& rows) {
    std::vector<RowId> removable;
    std::ranges::copy_if(rows, std::back_inserter(removable), [this](RowId id) {
        const auto row = units.preview.nodeController().rowWithId(id);
        return row && row->root;
    });
    return removable;
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
