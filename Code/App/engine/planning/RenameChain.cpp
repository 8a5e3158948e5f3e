#include "engine/planning/RenameChain.h"

#include "engine/renaming/RenameRun.h"
#include "store/contexts/StoreContext.h"
#include "support/application/DebugLog.h"

namespace tavrin {

void RenameChain::walk(RowId head) {
    run.item.moveTo(head);
    // The head decides for all.
    const bool treatAsRoot = run.item.isRoot();
    for (RowId id = head; id != noRow;) {
        if (!perform(id == head, treatAsRoot))
            return;
        id = run.context.row(id).mustBeRenamedBefore;
        // Links of a sound plan never lead back; those of a broken one must not lead round for ever.
        if (id == noRow || run.context.stageFlag(id) == run.marker || !run.context.exists(id))
            return;
        debugLog("****** dependency chain resolved ");
        run.item.moveTo(id);
    }
}

bool RenameChain::perform(bool isHead, bool treatAsRoot) {
    if (run.questions.shouldAbort())
        return false;
    const UserQuestions::Decision decision = ask(isHead);
    if (decision == UserQuestions::Decision::stop)
        return false;
    if (decision == UserQuestions::Decision::perform)
        rename(treatAsRoot);
    run.context.setStageFlag(run.item.id(), run.marker);
    return true;
}

UserQuestions::Decision RenameChain::ask(bool isHead) {
    RenameItem& item = run.item;
    if (!run.questions.isInteractive())
        return UserQuestions::Decision::perform;
    RenameQuestion question{item.folder(), std::nullopt, item.shownName(), item.shownFinalName()};
    if (isHead)
        question.fullPath = item.fullPath();
    return run.questions.confirmRename(question);
}

void RenameChain::rename(bool treatAsRoot) {
    RenameItem& item = run.item;
    RenamePrimitives& primitives = run.primitives;
    const bool worked = run.isInPlace(item.id()) ? primitives.renameItem(item, treatAsRoot)
                                                 : primitives.refuse("It has been renamed already");
    if (worked) {
        run.noteMoved(item.id());
        run.noteTakenPlace(run.context.row(item.id()).cannotBeRenamedBefore);
    } else {
        run.fail("Could not change a file name", primitives.failureReasonString(), item.fullPath());
    }
    run.report.describeItem(
        [&] { return fmt::format("Renaming {} to {}", item.fullPath(), item.shownFinalName()); });
}

} // namespace tavrin
