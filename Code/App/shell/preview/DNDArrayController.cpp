#include "shell/preview/DNDArrayController.h"

#include "engine/pipeline/RenameEngine.h"
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

/// Writes them by ascending id, which is the quickest, and not all at once, so that nobody waits long for the
/// main context. Why it failed, or nothing.
std::string renumber(StoreContext& context, const std::vector<std::int32_t>& places) {
    try {
        for (RowId id = 0; id < places.size(); ++id) {
            if (places[id] >= 0 && context.exists(id) && context.row(id).manualOrder != places[id])
                context.change(id).manualOrder = places[id];
            if (id % idsAtOnce == idsAtOnce - 1)
                context.commit();
        }
        context.commit();
        return {};
    } catch (const StoreError& error) {
        return error.what();
    }
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
    units.preview.finishRefresh();
    const std::vector<RowId>& rows = units.preview.nodeController().arrangedObjects();
    const auto found = std::ranges::find(rows, place.row);
    if (place.row != noRow && found == rows.end())
        return;
    const auto index =
        static_cast<std::size_t>(found - rows.begin()) + (found != rows.end() && place.isBehind);
    debugLog("index set: {} of {} rows to {}", moved.size(), rows.size(), index);
    arrange(rearranged(rows, moved, index));
}

void DNDArrayController::restoreOrder(const std::vector<RowId>& former) {
    units.preview.finishRefresh();
    const std::vector<RowId>& rows = units.preview.nodeController().arrangedObjects();
    const std::vector<bool> present = marksOf(rows);
    const std::vector<bool> known = marksOf(former);
    std::vector<RowId> order;
    std::ranges::copy_if(former, std::back_inserter(order),
                         [&](RowId id) { return id < present.size() && present[id]; });
    std::ranges::copy_if(rows, std::back_inserter(order),
                         [&](RowId id) { return id >= known.size() || !known[id]; });
    arrange(std::move(order));
}

void DNDArrayController::arrange(std::vector<RowId> order) {
    units.preview.holdOrder(order);
    const auto written = [this](int number, const std::string& failure) {
        if (!failure.empty())
            services.frontEnd.presentError(failure);
        if (number == *lastOrder)
            units.preview.releaseOrder();
    };
    const ItemStore* const store = &units.store.managedObjectContext().store();
    services.engine.changeRows([last = lastOrder, number = ++*lastOrder, order = std::move(order), written,
                                store](StoreContext& context) -> std::function<void()> {
        // The next one in line has it all; another store has other rows.
        if (number != *last || &context.store() != store)
            return nullptr;
        std::string failure = renumber(context, placesById(order));
        return [written, number, failure = std::move(failure)] { written(number, failure); };
    });
    services.settings.setAutomaticSorting(false);
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
