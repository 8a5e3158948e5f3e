#pragma once

#include "documents/Settings.h"
#include "engine/history/RunHistory.h"
#include "engine/naming/NamePins.h"
#include "engine/naming/NamesBeforeStep.h"
#include "engine/reading/FolderNotes.h"
#include "engine/reading/ItemSelection.h"
#include "engine/renaming/RunOutcomes.h"
#include "store/queries/FilterManager.h"
#include "store/queries/Predicate.h"
#include "support/values/PropertyValue.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tavrin {

class EngineHost;
class RenameObserver;
class StoreContext;

/// What the runs of one engine share, and all that their stages may ask of it: the application, the counters,
/// and whether to stop. `RenameEngine` adds the pipelines and their threads.
class EngineState {
  public:
    explicit EngineState(EngineHost& host) : application(host) {}
    EngineState(const EngineState&) = delete;
    EngineState& operator=(const EngineState&) = delete;

    [[nodiscard]] EngineHost& host() const { return application; }

    /// Where runs are recorded; nowhere at first. Set before the first request.
    void setHistoryPlace(HistoryPlace newPlace) { history = std::move(newPlace); }
    [[nodiscard]] const HistoryPlace& historyPlace() const { return history; }

    /// The run that has begun last was recorded under this name; empty: it was not. Any thread, as the next.
    void noteRecord(std::string run);
    [[nodiscard]] std::string recordOfLastRun() const;
    /// Whether this engine has made the run of this name.
    [[nodiscard]] bool hasRecorded(const std::string& run) const;

    /// Which items take part; all of them at first. Set before the first request.
    void setSelection(ItemSelection newSelection) { itemSelection = std::move(newSelection); }
    [[nodiscard]] const ItemSelection& selection() const { return itemSelection; }

    /// Off: the list of paths is not read again after a run, so it keeps the old ones. On at first; set
    /// before the first request.
    void setListFollowsRenames(bool follows) { listFollows = follows; }
    [[nodiscard]] bool listFollowsRenames() const { return listFollows; }

    /// Told of the renames of all runs to come; null for nobody. Not owned. Set while no run is under way.
    void setRenameObserver(RenameObserver* newObserver) { observer = newObserver; }
    [[nodiscard]] RenameObserver* renameObserver() const { return observer; }

    /// Off where nobody sees new names before the run: what it will be refused is then foreseen only where
    /// that decides about it. On at first; set before the first request.
    void setShowsProblems(bool shows) { showsProblems = shows; }
    [[nodiscard]] bool foreseesProblems(const Settings& ofRun) const {
        return showsProblems || ofRun.conflictRule() != Settings::OnConflict::number;
    }

    /// The next pass marker; the first is 2, after 99 comes 0.
    PassMarker nextStageFlagCounter();

    /// The value that `manualOrder` of the next row gets; goes up for the life of the engine.
    std::int32_t nextManualOrder() { return manualOrderCounter++; }

    /// The chain that made the new names on the list, as chains are stored; empty where they were given one
    /// by one. Under the engine's lock.
    void setChainOfNames(PropertyDictionary chain) { chainOfNames = std::move(chain); }
    [[nodiscard]] const PropertyDictionary& namesMadeBy() const { return chainOfNames; }

    /// What is settled by hand for items; nothing at first. Any thread; a run takes it once.
    void setPins(NamePins newPins) {
        const std::lock_guard lock(pinning);
        currentPins = std::move(newPins);
    }
    [[nodiscard]] NamePins pins() const {
        const std::lock_guard lock(pinning);
        return currentPins;
    }
    /// The names that the steps would have given to rows with names by hand, by their paths, as the last
    /// preview found them; null before there are any. Any thread.
    using ComputedNames = std::unordered_map<std::string, std::u16string>;
    void setComputedNames(std::shared_ptr<const ComputedNames> names) {
        const std::lock_guard lock(pinning);
        computed = std::move(names);
    }
    [[nodiscard]] std::shared_ptr<const ComputedNames> computedNames() const {
        const std::lock_guard lock(pinning);
        return computed;
    }

    /// Has previews keep what they will need again when only a late step changes: for a program that shows
    /// one after the other. Set before the first request.
    void expectManyPreviews() { keptNames = std::make_unique<NamesBeforeStep>(); }
    /// Null where nothing is kept.
    [[nodiscard]] NamesBeforeStep* namesBeforeStep() const { return keptNames.get(); }

    /// Hashes of the new names apart from case, by id, from the stage that makes names to the one that makes
    /// them distinct; nothing where names have changed in between.
    void setHashesOfNames(std::vector<std::uint32_t> hashes) { hashesOfNames = std::move(hashes); }
    [[nodiscard]] std::vector<std::uint32_t> takeHashesOfNames() { return std::exchange(hashesOfNames, {}); }

    /// The first of the rows that the run in hand has read; those behind it are new too. Under the engine's
    /// lock.
    void setFirstNewRow(RowId row) { newRowsBegin = row; }
    [[nodiscard]] RowId firstNewRow() const { return newRowsBegin; }

    /// What is known of the folders on the list.
    FolderNotes& folderNotes() { return notesOfFolders; }

    /// What has become of the items of the last run, or of the one under way. Any thread reads it.
    [[nodiscard]] RunOutcomes& runOutcomes() { return outcomes; }
    [[nodiscard]] const RunOutcomes& runOutcomes() const { return outcomes; }

    /// Asks the running rename to stop after the step in hand, as if the user had answered "stop". Any
    /// thread, also a signal's helper thread. Starting a rename takes it back.
    void requestStop() { stopRequested = true; }
    /// The same because the session ends, and nobody reads what is told then: the record of a run that has
    /// changed names stays without an end, as that of one cut off, so that the next start tells of it.
    void requestStopAtSessionEnd() {
        sessionEnds = true;
        stopRequested = true;
    }
    [[nodiscard]] bool isSessionEnding() const { return sessionEnds; }
    [[nodiscard]] bool isStopRequested() const { return stopRequested; }
    /// The program is waiting for the workers in order to end. Any thread.
    [[nodiscard]] bool isEnding() const { return ending; }

    /// Switches the failing pipeline's store into memory, where all rows are gone and the source items count
    /// as unread; false when it is there already. Worker thread.
    bool migrateToInMemoryStoreOnTheFly(StoreContext& context);
    [[nodiscard]] bool busyMigratingStore() const { return migrating; }

    // Counters of the EngineControl row of the given context.
    void computeTotalNumberOfFilesForContext(StoreContext& context, const ItemFilter& filter);
    void computeTotalNumberOfFilesSelectedOrNotForContext(StoreContext& context);
    void computeNumberOfFilesThatNeedRenaming(StoreContext& context, const ItemFilter& filter);
    void computeNumberOfFolders(StoreContext& context, const ItemFilter& filter);

  protected:
    ~EngineState() = default;

    EngineHost& application;
    HistoryPlace history;
    ItemSelection itemSelection;
    RenameObserver* observer = nullptr;
    bool listFollows = true;
    bool showsProblems = true;
    std::atomic<bool> stopRequested{false};
    std::atomic<bool> ending{false};
    std::atomic<bool> sessionEnds{false};
    RunOutcomes outcomes;

  private:
    bool moveRowsIntoMemory(StoreContext& context);
    mutable std::mutex recordNames;
    std::vector<std::string> records; ///< under recordNames, as the next
    bool lastIsRecorded = false;
    std::atomic<int> stageFlagCounter{1};
    std::atomic<bool> migrating{false};
    std::int32_t manualOrderCounter = 0; // touched under the engine's lock only, like the next
    RowId newRowsBegin = noRow;
    FolderNotes notesOfFolders;
    PropertyDictionary chainOfNames;
    std::unique_ptr<NamesBeforeStep> keptNames;
    std::vector<std::uint32_t> hashesOfNames;
    mutable std::mutex pinning; ///< guards the next two
    NamePins currentPins;
    std::shared_ptr<const ComputedNames> computed;
};

} // namespace tavrin
