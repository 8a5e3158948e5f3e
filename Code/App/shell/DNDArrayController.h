#pragma once

#include "shell/ShellServices.h"
#include "store/NodeRow.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tavrin {

class PreviewControl;
class SourceCommands;
class StoreOwner;

/// What dragging in the preview list does: rows dragged within it get an order made by hand, rows dragged out
/// of it leave it, files dropped on it are added. Indexes count the arranged rows of this moment. Main
/// thread.
class DNDArrayController {
  public:
    using Indexes = std::vector<std::size_t>; ///< ascending, without repeats

    struct Units {
        StoreOwner& store;
        PreviewControl& preview;
        SourceCommands& sources;
    };
    DNDArrayController(ShellServices& shared, Units otherUnits) : services(shared), units(otherUnits) {}

    /// A drag of rows begins; false when there is nothing to drag.
    bool writeRowsWithIndexes(Indexes indexes);
    /// Whether a drop is taken: rows of this list only between rows, files anywhere (they go to the end).
    [[nodiscard]] bool validateDrop(bool isFromThisList, bool isBetweenRows) const;
    /// Files were dropped.
    void acceptFiles(const std::vector<std::string>& paths);
    /// The rows being dragged were dropped in front of a row.
    void acceptRows(std::size_t row);
    /// Renumbers all rows, the moved ones in front of `row`, and switches automatic sorting off.
    void insertManualIndices(const Indexes& indexes, std::size_t row);
    /// A drag that began here has ended: rows that were dropped nowhere leave the list. Whether any did.
    bool deleteRowsIfAppropriate();
    /// The drag was given up: nothing happens at its end.
    void cancelDrag();
    /// Those that may be removed by themselves.
    [[nodiscard]] Indexes filterOutInappropriateIndexes(const Indexes& indexes);

  private:
    [[nodiscard]] std::vector<RowId> idsOf(const Indexes& indexes);
    void logOrder(const char* title);

    ShellServices& services;
    Units units;
    bool shouldDeleteRows = false;
    Indexes draggedIndexes;
};

} // namespace tavrin
