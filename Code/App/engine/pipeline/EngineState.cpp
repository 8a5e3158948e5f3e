#include "engine/pipeline/EngineState.h"

#include "engine/pipeline/EngineHost.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "store/sources/SourceItemManager.h"
#include "support/application/DebugLog.h"

#include <algorithm>
#include <memory>
#include <mutex>

namespace tavrin {

namespace {

constexpr std::size_t rowsPerCommit = 2000;

/// Rows that take part and that the predicate tells.
std::int32_t admitted(StoreContext& context, FetchEntity entity, const ItemFilter& filter,
                      const Predicate& which) {
    return static_cast<std::int32_t>(context.count(
        entity, FilterManager::currentFilterPredicate(filter).with(FilterManager::ticked()).with(which)));
}

} // namespace

void EngineState::noteRecord(std::string run) {
    const std::lock_guard lock(recordNames);
    lastIsRecorded = !run.empty();
    if (lastIsRecorded)
        records.push_back(std::move(run));
}

std::string EngineState::recordOfLastRun() const {
    const std::lock_guard lock(recordNames);
    return lastIsRecorded ? records.back() : std::string();
}

bool EngineState::hasRecorded(const std::string& run) const {
    const std::lock_guard lock(recordNames);
    return std::ranges::find(records, run) != records.end();
}

PassMarker EngineState::nextStageFlagCounter() {
    constexpr int period = 100;
    const int next = (stageFlagCounter + 1) % period;
    stageFlagCounter = next;
    return static_cast<PassMarker>(next);
}

bool EngineState::migrateToInMemoryStoreOnTheFly(StoreContext& context) {
    debugLog("migrating to in memory store");
    if (!moveRowsIntoMemory(context))
        return false;
    debugLog("deleting nodes files");
    SourceItemManager::sharedInstance().resetCache();
    while (context.deleteNodes(rowsPerCommit) > 0) {
        context.commit();
        context.refault();
    }
    debugLog("Clean up succeeded.");
    debugLog("Migration Complete.");
    return true;
}

bool EngineState::moveRowsIntoMemory(StoreContext& context) {
    migrating = true; // no merges meanwhile, and again on every way out
    const std::shared_ptr<void> lowered(nullptr, [this](void*) { migrating = false; });
    ItemStore& store = context.store();
    if (store.kind() == ItemStore::Kind::memory)
        return false;
    debugLog("resetting UI thread context to avoid crash");
    context.reset();
    StoreContext& mainContext = application.managedObjectContext();
    {
        const std::lock_guard lock(mainContext.mutex());
        mainContext.reset();
    }
    debugLog("current store: {}", store.description());
    const bool hasMoved = store.migrateToMemory();
    if (!hasMoved)
        debugLog("migration failed!");
    return hasMoved;
}

void EngineState::computeTotalNumberOfFilesForContext(StoreContext& context, const ItemFilter& filter) {
    const std::int32_t count = admitted(context, FetchEntity::file, filter, Predicate::always());
    context.changeEngineControl().totalNumberOfFiles = count;
}

void EngineState::computeTotalNumberOfFilesSelectedOrNotForContext(StoreContext& context) {
    const auto count = context.count(FetchEntity::file, Predicate::always());
    context.changeEngineControl().totalNumberOfFilesSelectedOrNot = static_cast<std::int32_t>(count);
}

void EngineState::computeNumberOfFilesThatNeedRenaming(StoreContext& context, const ItemFilter& filter) {
    const std::int32_t count = admitted(context, FetchEntity::file, filter, Predicate::isTrue(NodeKey::diff));
    context.changeEngineControl().numberOfFilesThatNeedRenaming = count;
}

void EngineState::computeNumberOfFolders(StoreContext& context, const ItemFilter& filter) {
    const std::int32_t count =
        admitted(context, FetchEntity::node, filter, Predicate::isTrue(NodeKey::treatAsFolder));
    context.changeEngineControl().numberOfFolders = count;
}

} // namespace tavrin
