#pragma once

#include "engine/renaming/RunFolders.h"

#include <string>
#include <unordered_map>

namespace tavrin {

class RenameItem;
class StoreContext;

/// The names under which items of a run may have to lie for a moment: where a file system can't exchange two
/// names at once, and for a change of case in a folder that ignores case. One a folder and kind, since only
/// one item of a folder is on its way at a time. Free when it is chosen, short enough, and no name of an item
/// on the list. Worker thread only.
class StandIns {
  public:
    StandIns(StoreContext& rows, RunFolders& runFolders) : context(rows), folders(runFolders) {}

    /// The name for this item, chosen at the first question and the same from then on; empty for an item that
    /// goes straight to its new name.
    const std::string& nameFor(RenameItem& item);

  private:
    struct Names {
        std::string inTurn; ///< for an item whose name another one waits for, and the reverse
        std::string inCase;
    };

    std::string freeName(const RenameItem& item, std::string_view wish);

    StoreContext& context;
    RunFolders& folders;
    std::unordered_map<RowId, Names> chosen; ///< by folder
    std::string none;
};

} // namespace tavrin
