#include "engine/RenameCycle.h"

#include "engine/PathParts.h"
#include "store/StoreContext.h"
#include "support/DebugLog.h"

namespace tavrin {

namespace {

constexpr std::string_view temporaryPrefix = "_temp_";
/// A folder can have a million children, too many marks to hold until the end of the batch.
constexpr std::size_t childrenPerCommit = 10000;

} // namespace

void RenameCycle::resolve(RowId member) {
    debugLog("********** resolving dependency chain **********");
    item.moveTo(member);
    if (run.questions.confirmNameCycle({item.folder()}) == UserQuestions::Decision::stop)
        return;

    std::vector<Child> children;
    for (const RowId id : run.context.children(run.context.row(member).parent))
        children.push_back({id, false, std::nullopt});
    for (Child& child : children)
        renameToTemporary(child);
    if (run.questions.hasAborted())
        return;
    for (std::size_t i = 0; i < children.size(); ++i) {
        renameToFinal(children[i]);
        if ((i + 1) % childrenPerCommit == 0) {
            // A commit that fails leaves the marks staged for the next.
            static_cast<void>(run.context.commit());
            run.context.refault();
        }
    }
}

void RenameCycle::renameToTemporary(Child& child) {
    RenamePrimitives& primitives = run.primitives;
    item.moveTo(child.id);
    if (debugLogIsOn())
        debugLog("processing current to temp rename for {}", item.fullPath());
    child.isTemporary =
        run.isInPlace(child.id)
            ? primitives.renameCurrentName(item.component(), item.folder(), temporaryName(), false, run.expected(child.id))
            : primitives.refuse();
    if (child.isTemporary) {
        --primitives.actuallyRenamedCounter;
        child.identity = primitives.identity();
        run.noteMoved(child.id);
        return;
    }
    run.questions.displayError("Could not perform a temporary rename while resolving a dependency chain.",
                               primitives.failureReasonString(), item.fullPath());
}

void RenameCycle::renameToFinal(const Child& child) {
    RenamePrimitives& primitives = run.primitives;
    item.moveTo(child.id);
    if (debugLogIsOn())
        debugLog("processing temp to final rename for {}", item.fullPath());
    const std::string& newName = item.newComponent();
    const bool worked = child.isTemporary ? primitives.renameCurrentName(temporaryName(), item.folder(),
                                                                         newName, false, child.identity)
                                          : primitives.refuse();
    if (worked && item.isRoot()) {
        run.sourceItems.add(joinedPath(item.folder(), newName));
        run.sourceItems.remove(item.fullPath());
    }
    if (!worked)
        run.questions.displayError("Could not undo a temporary rename while resolving a dependency chain.",
                                   primitives.failureReasonString(), item.fullPath());
    run.context.setStageFlag(child.id, run.marker);
}

std::string RenameCycle::temporaryName() const { return std::string(temporaryPrefix) + item.component(); }

} // namespace tavrin
