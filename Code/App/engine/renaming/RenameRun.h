#pragma once

#include "engine/asking/UserQuestions.h"
#include "engine/naming/NamePins.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/renaming/NameMover.h"
#include "engine/renaming/RenameItem.h"
#include "engine/renaming/RenameObserver.h"
#include "engine/renaming/RenamePrimitives.h"
#include "engine/renaming/RunFolders.h"
#include "engine/renaming/RunOutcomes.h"
#include "store/queries/FilterManager.h"
#include "support/text/PathParts.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tavrin {

/// A set of rows, a bit for each.
class RowSet {
  public:
    /// False when it was in the set already.
    bool insert(RowId id) {
        if (contains(id))
            return false;
        if (id >= bits.size())
            bits.resize(id + id / 2 + 1024);
        bits[id] = true;
        return true;
    }
    [[nodiscard]] bool contains(RowId id) const { return id < bits.size() && bits[id]; }

  private:
    std::vector<bool> bits;
};

/// What the renames of one batch mean for the list of paths that the user added.
class SourceItemChanges {
  public:
    /// Not `wanted`: nobody reads the list again, and nothing is to be noted.
    explicit SourceItemChanges(bool wanted) : isWanted(wanted) {}
    [[nodiscard]] bool areWanted() const { return isWanted; }

    void change(std::string from, std::string to);
    void remove(std::string path) { toBeRemoved.push_back(std::move(path)); }
    void add(std::string path) { toBeAdded.push_back(std::move(path)); }

    /// Tells SourceItemManager: changes, then removals, then additions, since a swap removes and adds the
    /// same two paths. Empties the lists.
    void apply();

  private:
    const bool isWanted;
    std::vector<std::string> changeFrom;
    std::vector<std::string> changeTo;
    std::vector<std::string> toBeRemoved;
    std::vector<std::string> toBeAdded;
};

/// What the units of one run share. Worker thread only.
struct RenameRun {
    RenameRun(EngineState& engine, ProcessingStage& stage, StoreContext& store, ProgressInfo* progress,
              bool shouldBeInteractive);
    RenameRun(const RenameRun&) = delete;
    RenameRun& operator=(const RenameRun&) = delete;

    /// Whether the item still lies where its row says: what this run has moved is no longer there, and what
    /// lies there now is not to be touched.
    [[nodiscard]] bool isInPlace(RowId id) const { return !moved.contains(id); }
    /// Notes that an item has left its place.
    void noteMoved(RowId id) { moved.insert(id); }
    /// Tells who wants to know that an item bears another name, and whether it is the one that it was to get.
    void tellRenamed(std::string_view folder, std::string_view from, std::string_view to, bool isWanted) {
        if (movedPaths)
            movedPaths->add(joinedPath(folder, from), to, isWanted && givesNamesOfList);
        if (observer)
            observer->itemWasRenamed(from, to);
    }
    /// Tells what the run means for what is settled by hand.
    void tellMoves();
    /// Notes that the item in hand has got the name that another one was to leave free. If that one has not
    /// moved, it has vanished, and its place is taken now.
    void noteTakenPlace(RowId formerHolder);

    /// Reports a failure that has left these rows of one folder without their new names. `reason` is the
    /// message in few words; `path` that of the item that is named.
    void fail(std::initializer_list<RowId> rows, const std::string& title, const std::string& message,
              const std::string& reason, const std::string& path);

    StoreContext& context;
    RenameItem item; ///< the one in hand
    StageProgress report;
    SourceItemChanges sourceItems;
    RunFolders folders;
    StandIns standIns;
    /// Called once for each device whose file system can't refuse a taken name, before a rename there does
    /// without.
    std::function<void(std::uint32_t device)> onFlagRefused = [](std::uint32_t) {};
    NameMover mover;
    RenamePrimitives primitives;
    UserQuestions questions;
    PassMarker marker;
    RunOutcomes& outcomes;
    ItemFilter filter;              ///< which rows take part
    bool givesNamesOfList = true;   ///< not those of a run that is taken back
    std::int32_t failedCounter = 0; ///< items without the names that they were to get

  private:
    [[nodiscard]] VolumeEvents volumeEvents();
    void tellUnguarded(const RunFolders::Place& place);

    EngineState& engine;
    const NamePins pins;
    std::optional<MovedPaths> movedPaths; ///< only where somebody has settled something
    RenameObserver* const observer;       ///< may be null
    RowSet moved;
    std::set<std::uint32_t> unflagged; ///< devices
    std::set<std::uint32_t> unguarded;
};

} // namespace tavrin
