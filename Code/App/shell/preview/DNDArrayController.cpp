#include "shell/preview/DNDArrayController.h"

#include "shell/asking/FrontEnd.h"
#include "shell/commands/SourceCommands.h"
#include "shell/preview/PreviewControl.h"
#include "shell/start/StoreOwner.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/StoreError.h"
#include "support/application/DebugLog.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <mutex>
#include <utility>

namespace tavrin {

namespace {

const Alert someItemsNotRemoved{.kind = AlertKind::itemsNotRemoved,
                                .style = AlertStyle::informational,
                                .title = "Some items could not be removed.",
                                .text = "Items in subfolders cannot be removed individually.",
                                .buttons = {"OK"}};

constexpr std::size_t idsAtOnce = 10000;

/// A mark for each row that may be in a list, so that long lists are walked just once.
std::vector<bool> marksOf(const std::vector<RowId>& ids) {
    std::vector<bool> marks(ids.empty() ? 0 : std::size_t{std::ranges::max(ids)} + 1);
    for (const RowId id : ids)
        marks[id] = true;
    return marks;
}

/// The rows in their new order: those in front of the place, the moved ones, and those behind.
std::vector<RowId> rearranged(const std::vector<RowId>& rows, const std::vector<RowId>& moved,
                              std::size_t place) {
    const std::vector<bool> marks = marksOf(moved);
    const auto isMoved = [&](RowId id) { return id < marks.size() && marks[id]; };
    const auto middle = rows.begin() + static_cast<std::ptrdiff_t>(place);
    std::vector<RowId> result;
    result.reserve(rows.size());
    std::copy_if(rows.begin(), middle, std::back_inserter(result), std::not_fn(isMoved));
    std::ranges::copy_if(rows, std::back_inserter(result), isMoved);
    std::copy_if(middle, rows.end(), std::back_inserter(result), std::not_fn(isMoved));
    return result;
}

/// By id, the place of each row; -1 where there is none.
std::vector<std::int32_t> placesById(const std::vector<RowId>& order) {
    std::vector<std::int32_t> places(order.empty() ? 0 : std::size_t{std::ranges::max(order)} + 1, -1);
    for (std::size_t place = 0; place < order.size(); ++place)
        places[order[place]] = static_cast<std::int32_t>(place);
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
    if (!renumbering.expired())
        units.sources.finishWork();
    units.preview.finishRefresh();
    const std::vector<RowId>& rows = units.preview.nodeController().arrangedObjects();
    const auto found = std::ranges::find(rows, place.row);
    if (place.row != noRow && found == rows.end())
        return;
    const auto index =
        static_cast<std::size_t>(found - rows.begin()) + (found != rows.end() && place.isBehind);
    debugLog("index set: {} of {} rows to {}", moved.size(), rows.size(), index);
    const auto token = std::make_shared<char>();
    renumbering = token;
    units.sources.begin(
        [this, token, places = placesById(rearranged(rows, moved, index)), next = RowId{0}]() mutable {
            if (next < places.size() && renumber(places, next))
                return true;
            services.settings.setAutomaticSorting(false);
            units.preview.refreshPreviewSoon();
            return false;
        });
}

/// Some rows, from the next id on: in this order they are the quickest to write. False when the store fails.
bool DNDArrayController::renumber(const std::vector<std::int32_t>& places, RowId& next) {
    try {
        StoreContext& context = units.store.managedObjectContext();
        const std::lock_guard lock(context.mutex());
        const std::size_t end = std::min(next + idsAtOnce, places.size());
        for (; next < end; ++next)
            if (const std::int32_t place = places[next];
                place >= 0 && context.exists(next) && context.row(next).manualOrder != place)
                context.change(next).manualOrder = place;
        context.commit();
        return true;
    } catch (const StoreError& error) {
        services.frontEnd.presentError(error.what());
        return false;
    }
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

} // namespace tavrin
