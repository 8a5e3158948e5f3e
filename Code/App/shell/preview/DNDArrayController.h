#pragma once

#include "shell/commands/ShellServices.h"
#include "store/rows/NodeRow.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavrin {

class PreviewControl;
class SourceCommands;
class StoreOwner;

/// What dragging in the preview list does: rows dragged within it get an order made by hand, rows dragged out
/// of it leave it, files dropped on it are added. Rows are told by their ids: what is on show may be a part
/// of the list. Main thread.
class DNDArrayController {
  public:
    /// Where rows are put: in front of a row or right behind it; without a row, at the end.
    struct Place {
        RowId row = noRow;
        bool isBehind = false;
    };

    struct Units {
        StoreOwner& store;
        PreviewControl& preview;
        SourceCommands& sources;
    };
    DNDArrayController(ShellServices& shared, Units otherUnits) : services(shared), units(otherUnits) {}

    /// A drag of rows begins; false when there is nothing to drag.
    bool writeRows(std::vector<RowId> rows);
    /// Whether a drop is taken: rows of this list only between rows, files anywhere (they go to the end).
    [[nodiscard]] bool validateDrop(bool isFromThisList, bool isBetweenRows) const;
    /// Files were dropped.
    void acceptFiles(const std::vector<std::string>& paths);
    /// The rows being dragged were dropped there.
    void acceptRows(Place place);
    /// Puts the moved rows, in the order that they had, at their new place among all rows, also those that
    /// are not on show, and switches automatic sorting off. The list shows it at once; the rows get their
    /// numbers on another thread, before any preview that is asked for from now on. Does nothing when the row
    /// of the place is gone.
    void insertRows(const std::vector<RowId>& moved, Place place);
    /// Gives the rows a former order again, as if by hand; rows that it does not know come behind.
    void restoreOrder(const std::vector<RowId>& former);
    /// A drag that began here has ended: rows that were dropped nowhere leave the list. Whether any did.
    bool deleteRowsIfAppropriate();
    /// The drag was given up: nothing happens at its end.
    void cancelDrag();
    /// Those that may be removed by themselves.
    [[nodiscard]] std::vector<RowId> filterOutInappropriateRows(const std::vector<RowId>& rows);

  private:
    /// Shows the rows in the order, and has it written.
    void arrange(std::vector<RowId> order);

    ShellServices& services;
    Units units;
    bool shouldDeleteRows = false;
    std::vector<RowId> draggedRows;
    /// Of the orders that are on their way into the store, the number of the last; workers read it.
    std::shared_ptr<std::atomic<int>> lastOrder = std::make_shared<std::atomic<int>>(0);
};

} // namespace tavrin
