#include "engine/RenameRun.h"

#include "engine/PathParts.h"
#include "engine/RenameEngine.h"
#include "engine/RunJournal.h"
#include "store/StoreContext.h"

namespace tavrin {

RenameRun::RenameRun(RenameEngine& engine, ProcessingStage& stage, StoreContext& store,
                     ProgressInfo* progress, bool shouldBeInteractive)
    : context(store), item(store), report(progress),
      primitives(FileSystem::sharedInstance(), report, sourceItems),
      questions(engine, stage, shouldBeInteractive), marker(engine.nextStageFlagCounter()),
      disk(FileSystem::sharedInstance()) {}

std::optional<FileIdentity> RenameRun::expected(RowId id) const {
    return isStrict ? std::optional(context.row(id).identity()) : std::nullopt;
}

void RenameRun::noteIdentity(RowId id) {
    if (journal && primitives.identity() && primitives.identity()->inode != context.row(id).inode)
        journal->late(id, *primitives.identity());
}

void RenameRun::noteTakenPlace(RowId formerHolder) {
    if (formerHolder == noRow || moved.contains(formerHolder) || !primitives.identity())
        return;
    FileStatus found;
    const std::string place = joinedPath(item.folder(), context.component(formerHolder));
    if (disk.status(place, found) == 0 && found.identity == *primitives.identity())
        moved.insert(formerHolder);
}

} // namespace tavrin
