#pragma once

#include "platform/files/FileSystem.h"
#include "platform/files/KnownVolumes.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace tavrin {

class RenameItem;
class StoreContext;

/// The folders in which a run renames, each held open and each the very one that was read: what has taken a
/// folder's place since then, a link most of all, is not touched. Worker thread only.
class RunFolders {
  public:
    /// Whether names that differ in case alone are one name in a folder.
    enum class CaseRule { unknown, counts, ignored };

    struct Place {
        std::unique_ptr<OpenFolder> folder; ///< null when there is an error
        int error = 0;                      ///< of the system; ESTALE when it is not the folder that was read
        std::string path;
        FileIdentity identity;
        CaseRule caseRule = CaseRule::unknown;
        bool isRemote = false;
        /// Asked at each call; zeros where it can't be.
        [[nodiscard]] VolumeFacts volume() const;
    };

    /// How the items of the run come: those of a folder one after the other, or those of many in turn.
    enum class Order { byFolder, mixed };

    RunFolders(FileSystem& disk, Order order);

    /// The folder at the path, which the row stands for. Valid until the next call.
    Place& at(RowId row, const std::string& path, const FileIdentity& asRead);
    /// How often all were closed, so that no place from before is valid.
    [[nodiscard]] std::size_t closings() const { return closingCount; }
    /// Makes room for so many more folders, at most `mostAhead`, that stay valid together.
    void makeRoomFor(std::size_t folders);
    static constexpr std::size_t mostAhead = 8;

    /// What the two calls of a rename that was made ahead of the run have answered.
    struct Answer {
        std::string to;
        FileStatus look;
        int error = 0; ///< of the rename
        bool isLookGiven = false;
    };
    /// The folder of the row gives this answer in the place of the next look at the item and of its rename.
    void answer(RowId row, std::string from, Answer answer);
    [[nodiscard]] Answer* answerFor(RowId row, const std::string& from);
    void forgetAnswer(RowId row, const std::string& from);

  private:
    void closeAll();
    void open(Place& place, RowId row, const std::string& path, const FileIdentity& asRead);

    FileSystem& fileSystem;
    const Order order;
    const std::size_t mostOpen;
    std::size_t closingCount = 0;
    KnownVolumes volumes;
    std::unordered_map<RowId, Place> places;
    std::unordered_map<RowId, std::unordered_map<std::string, Answer>> answers;
};

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
