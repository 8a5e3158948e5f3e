#include "engine/RenamePair.h"

#include "engine/PathParts.h"
#include "store/StoreContext.h"
#include "support/DebugLog.h"

namespace tavrin {

namespace {

constexpr std::string_view temporaryName = "temporary file name for swapped file";
const std::string failureMessage = "You may not have sufficient access privileges to rename either or both "
                                   "files, they may be locked, or the "
                                   "files may be on a read-only medium, an incompatible external drive or an "
                                   "unsupported remote file system.";

} // namespace

void RenamePair::exchange(RowId item, RowId partner) {
    RenameItem& first = run.item;
    RenameItem second(run.context);
    first.moveTo(item);
    second.moveTo(partner);

    auto decision = UserQuestions::Decision::perform;
    if (run.questions.isInteractive())
        decision = run.questions.confirmSwap(
            {first.folder(), first.fullPath(), second.fullPath(), first.shownName(), first.shownFinalName()});
    if (decision == UserQuestions::Decision::stop)
        return;
    if (decision == UserQuestions::Decision::perform) {
        debugLog("****** swap ");
        if (!swapNameAndName(first, second))
            run.questions.displayError(
                fmt::format("Could not swap file names '{}' and '{}'. Neither file was renamed.",
                            first.shownName(), second.shownName()),
                failureMessage, first.fullPath());
        const auto text = [&] { return fmt::format("Swap {} and {}", first.fullPath(), second.fullPath()); };
        if (debugLogIsOn())
            writeDebugLogLine(text());
        run.report.describeItem(text);
    }
    run.context.setStageFlag(item, run.marker);
    run.context.setStageFlag(partner, run.marker);
}

bool RenamePair::swapNameAndName(const RenameItem& first, const RenameItem& second) {
    if (!run.isInPlace(first.id()) || !run.isInPlace(second.id()))
        return false;
    RenamePrimitives& primitives = run.primitives;
    const std::string& folder = first.folder();
    if (!primitives.renameCurrentName(first.component(), folder, temporaryName, false, run.expected(first.id())))
        return false;
    --primitives.actuallyRenamedCounter;
    const std::optional<FileIdentity> firstIdentity = primitives.identity();

    if (!primitives.renameCurrentName(second.component(), folder, first.component(), false, run.expected(second.id()))) {
        if (primitives.renameCurrentName(temporaryName, folder, first.component(), false, firstIdentity))
            --primitives.actuallyRenamedCounter;
        else
            run.noteMoved(first.id());
        return false;
    }
    run.noteMoved(first.id());
    run.noteMoved(second.id());
    if (!primitives.renameCurrentName(temporaryName, folder, second.component(), false, firstIdentity))
        return false;
    if (first.isRoot()) {
        for (const RenameItem* item : {&first, &second})
            run.sourceItems.remove(item->fullPath());
        for (const RenameItem* item : {&first, &second})
            run.sourceItems.add(item->fullPath());
    }
    return true;
}

} // namespace tavrin
