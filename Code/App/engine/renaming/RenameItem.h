#pragma once

#include "store/rows/NodeRow.h"

#include <string>

namespace tavrin {

class StoreContext;

/// What the steps of a rename need to know of one row, as it was read. Buffers are reused from row to row,
/// and a folder's path is read once for all that lie in it.
class RenameItem {
  public:
    explicit RenameItem(StoreContext& from) : context(from) {}

    void moveTo(RowId id);

    [[nodiscard]] RowId id() const { return current; }
    [[nodiscard]] bool isRoot() const { return root; }
    /// Whether it waits for a sibling's name, so that it may have to go by way of another one.
    [[nodiscard]] bool takesTurns() const { return isInTurn; }
    /// What reading saw.
    [[nodiscard]] const SeenItem& seen() const { return seenItem; }
    [[nodiscard]] RowId parentRow() const { return parent; }
    [[nodiscard]] const FileIdentity& folderAsRead() const { return parentIdentity; }
    /// Path of the folder.
    [[nodiscard]] const std::string& folder() const { return folderPath; }
    /// The present name in the bytes of the file system.
    [[nodiscard]] const std::string& component() const { return currentComponent; }
    [[nodiscard]] std::string fullPath() const;
    /// The name to be, in bytes; empty when no file can bear it. An item without `diff` keeps its own bytes.
    const std::string& newComponent();
    /// Why no file can bear the name to be.
    [[nodiscard]] NameProblem problemOfNewName();
    /// The two names as the user sees them, in UTF-8.
    [[nodiscard]] std::string shownName() const;
    [[nodiscard]] std::string shownFinalName();

  private:
    StoreContext& context;
    RowId current = noRow;
    RowId parent = noRow;
    SeenItem seenItem;
    FileIdentity parentIdentity;
    bool root = false;
    bool diff = false;
    bool isInTurn = false;
    bool hasExactName = false;
    std::string folderPath;
    std::string currentComponent;
    bool knowsWanted = false; ///< since the item was come to; a run changes no final name
    std::string wantedComponent;
    std::u16string finalName;
};

} // namespace tavrin
