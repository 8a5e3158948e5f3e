#include "engine/renaming/RenameRun.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "platform/processes/RunLoop.h"
#include "store/contexts/StoreContext.h"
#include "store/sources/SourceItemManager.h"
#include "support/application/DebugLog.h"

#include <fmt/ranges.h>

#include <utility>

namespace tavrin {

void SourceItemChanges::change(std::string from, std::string to) {
    changeFrom.push_back(std::move(from));
    changeTo.push_back(std::move(to));
}

void SourceItemChanges::apply() {
    debugLog("-- finished renaming, now removing old source times, then adding new source items");
    if (debugLogIsOn()) {
        debugLog("source item paths to be changed from {} to {}", fmt::join(changeFrom, ", "),
                 fmt::join(changeTo, ", "));
        debugLog("source item paths to be removed: {}", fmt::join(toBeRemoved, ", "));
        debugLog("source item paths to be added: {}", fmt::join(toBeAdded, ", "));
    }
    SourceItemManager& manager = SourceItemManager::sharedInstance();
    for (std::size_t i = 0; i < changeFrom.size(); ++i)
        manager.changeTo(changeFrom[i], changeTo[i]);
    for (const std::string& path : toBeRemoved)
        manager.removeItem(path);
    for (const std::string& path : toBeAdded)
        manager.addSourceItem(path);
    for (auto* paths : {&changeFrom, &changeTo, &toBeRemoved, &toBeAdded})
        paths->clear();
}

RenameRun::RenameRun(EngineState& owner, ProcessingStage& stage, StoreContext& store, ProgressInfo* progress,
                     bool shouldBeInteractive)
    : context(store), item(store), report(progress), sourceItems(owner.listFollowsRenames()),
      folders(FileSystem::sharedInstance(),
              shouldBeInteractive ? RunFolders::Order::mixed : RunFolders::Order::byFolder),
      standIns(store, folders), mover(volumeEvents()), primitives({folders, standIns, mover, report}),
      questions(owner, stage, shouldBeInteractive), marker(owner.nextStageFlagCounter()),
      outcomes(owner.runOutcomes()), engine(owner), pins(owner.pins()), observer(owner.renameObserver()) {
    if (!pins.isEmpty())
        movedPaths.emplace();
}

VolumeEvents RenameRun::volumeEvents() {
    return {[this](std::uint32_t device) {
                if (unflagged.insert(device).second)
                    onFlagRefused(device);
            },
            [this](const RunFolders::Place& place) { tellUnguarded(place); }};
}

void RenameRun::tellUnguarded(const RunFolders::Place& place) {
    if (!unguarded.insert(place.identity.device).second)
        return;
    const std::string text = fmt::format("The file system of {} cannot refuse a taken name; a file created "
                                         "there in the same moment could be replaced.",
                                         item.folder());
    engine.host().runLoop().post([&host = engine.host(), text] { host.presentNotice(text); });
}

void RenameRun::tellMoves() {
    if (!movedPaths)
        return;
    NamePins::Bunches bunches;
    for (NamePins::Change& change : movedPaths->changesOf(pins))
        bunches.add(std::move(change));
    movedPaths.emplace();
    for (auto bunch = bunches.next(); !bunch.empty(); bunch = bunches.next())
        engine.host().runLoop().performAndWait([&] { engine.host().changePins(std::move(bunch)); });
}

void RenameRun::noteTakenPlace(RowId formerHolder) {
    const FileIdentity& taker = primitives.identity();
    if (formerHolder == noRow || moved.contains(formerHolder) || !taker.isKnown())
        return;
    const RunFolders::Place& place = primitives.place(item);
    FileStatus found;
    if (place.folder && place.folder->status(std::string(context.component(formerHolder)), found) == 0 &&
        found.identity == taker)
        moved.insert(formerHolder);
}

void RenameRun::fail(std::initializer_list<RowId> rows, const std::string& title, const std::string& message,
                     const std::string& reason, const std::string& path) {
    failedCounter += static_cast<std::int32_t>(rows.size());
    for (const RowId row : rows)
        outcomes.fail(row, {rows.size() == 1 ? path : context.fullPath(row), context.finalName(row), title,
                            message, reason});
    questions.displayError(title, message, path);
}

} // namespace tavrin
