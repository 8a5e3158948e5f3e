#include "engine/renaming/RenameRun.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/RenameEngine.h"
#include "platform/processes/RunLoop.h"
#include "store/contexts/StoreContext.h"

namespace tavrin {

RenameRun::RenameRun(RenameEngine& owner, ProcessingStage& stage, StoreContext& store, ProgressInfo* progress,
                     bool shouldBeInteractive)
    : context(store), item(store), report(progress), folders(FileSystem::sharedInstance()),
      standIns(store, folders), mover(volumeEvents()),
      primitives({folders, standIns, mover, sourceItems, report}),
      questions(owner, stage, shouldBeInteractive), marker(owner.nextStageFlagCounter()), engine(owner) {}

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

void RenameRun::fail(const std::string& title, const std::string& message, const std::string& path,
                     std::int32_t items) {
    failedCounter += items;
    questions.displayError(title, message, path);
}

} // namespace tavrin
