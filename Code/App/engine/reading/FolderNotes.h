#pragma once

#include "platform/files/FileStatus.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavrin {

/// What was seen in folders beside the items on the list, so that a preview need not list a folder anew that
/// has not changed since; and which items were locked. Worker threads, under the engine's lock.
class FolderNotes {
  public:
    /// The names in a folder that are not on the list. Valid as long as the notes stay as they are.
    using Names = std::vector<std::string_view>;

    /// Notes what a listing has shown. `before` is the folder's status from before it; `rows` the number of
    /// its entries that are on the list. Nothing is noted of a folder that has just been changed, since a
    /// change after the listing could bear the same time, nor where it would take much memory.
    void put(RowId folder, const FileStatus& before, std::size_t rows, const Names& others);
    /// The same names, if neither the folder has changed nor which of its entries are on the list.
    struct Answer {
        bool isKnown = false;
        Names names = {};
    };
    [[nodiscard]] Answer find(RowId folder, const FileStatus& now, std::size_t rows) const;

    /// A file is locked and unlocked without a trace in its folder, so what is noted here is to be looked at.
    void noteLocked(RowId item, bool isLocked);
    [[nodiscard]] bool wasLocked(RowId item) const { return item < locked.size() && locked[item]; }

  private:
    struct Note {
        FileIdentity identity;
        double changeDate;
        std::size_t rows;
        std::string others; ///< each followed by a NUL
    };
    std::unordered_map<RowId, Note> notes;
    std::vector<bool> locked; ///< by id
    std::size_t bytes = 0;
};

} // namespace tavrin
