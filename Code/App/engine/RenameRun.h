#pragma once

#include "engine/RenameItem.h"
#include "engine/RenamePrimitives.h"
#include "engine/SourceItemChanges.h"
#include "engine/StageProgress.h"
#include "engine/UserQuestions.h"
#include "store/Predicate.h"

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// A set of rows, a bit for each.
class RowSet {
  public:
    void insert(RowId id) {
        if (id >= bits.size())
            bits.resize(id + id / 2 + 1024);
        bits[id] = true;
    }
    [[nodiscard]] bool contains(RowId id) const { return id < bits.size() && bits[id]; }

  private:
    std::vector<bool> bits;
};

class RunJournal;

/// What the units of one run share. Worker thread only.
struct RenameRun {
    RenameRun(RenameEngine& engine, ProcessingStage& stage, StoreContext& store, ProgressInfo* progress,
              bool shouldBeInteractive);

    /// Whether the item still lies where its row says: what this run has moved is no longer there, and what
    /// lies there now is not to be touched.
    [[nodiscard]] bool isInPlace(RowId id) const { return !moved.contains(id); }
    /// What must lie where the row says for the item to be touched; anything will do where absent.
    [[nodiscard]] std::optional<FileIdentity> expected(RowId id) const;
    /// Has the record know the item that the last rename was about, where it is not the one that the row
    /// knew.
    void noteIdentity(RowId id);
    /// Notes that an item has left its place.
    void noteMoved(RowId id) { moved.insert(id); }
    /// Notes that the item in hand has got the name that another one was to leave free. If that one has not
    /// moved, it has vanished, and its place is taken now.
    void noteTakenPlace(RowId formerHolder);

    StoreContext& context;
    RenameItem item; ///< the one in hand
    StageProgress report;
    SourceItemChanges sourceItems;
    RenamePrimitives primitives;
    UserQuestions questions;
    PassMarker marker;
    RunJournal* journal = nullptr; ///< not owned; null where none is kept
    bool isStrict = false;         ///< only the very items that the rows know are renamed

  private:
    FileSystem& disk;
    RowSet moved;
};

} // namespace tavrin
