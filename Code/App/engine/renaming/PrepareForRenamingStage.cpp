#include "engine/renaming/PrepareForRenamingStage.h"

#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/renaming/NameOnDisk.h"
#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

#include <algorithm>
#include <functional>

namespace tavrin {

namespace {

constexpr std::size_t foldersPerBatch = 1000;
/// A folder can have a million children, too many changes to hold until the end of its batch.
constexpr std::size_t rowsPerCommit = 10000;

} // namespace

bool PrepareForRenamingStage::process() {
    const StageProgress report(progress);
    engine.computeNumberOfFolders(*context, settings.itemFilter());
    report.numberOfItems(context->engineControl().numberOfFolders);
    report.describe("Preparing..");
    report.indeterminate(true);

    const PassMarker marker = engine.nextStageFlagCounter();
    const FetchRequest openFolders{
        FetchEntity::node,
        Predicate::isTrue(NodeKey::treatAsFolder).with(Predicate::notMarked(marker)),
        {},
        foldersPerBatch};
    std::int32_t count = 0;
    for (;;) {
        const std::vector<RowId> folders = context->fetch(openFolders);
        if (folders.empty())
            return true;
        for (const RowId folder : folders) {
            report.describeItem([&] { return "Processing: " + context->fullPath(folder); });
            prepareFolder(folder);
            context->setStageFlag(folder, marker);
            report.item(++count);
        }
        report.describe("Prepared {} folders. Committing..", count);
        saveAndRefaultObjects();
        changedRows = 0;
    }
}

std::int32_t PrepareForRenamingStage::getDepthFor(RowId item) {
    std::int32_t depth = -1;
    for (; item != noRow; item = context->row(item).parent)
        ++depth;
    return depth;
}

void PrepareForRenamingStage::prepareFolder(RowId folder) {
    const std::int32_t depth = getDepthFor(folder);
    setDepth(folder, depth);
    const std::vector<RowId> children = context->children(folder);
    if (setDepths(children, depth + 1))
        linkSiblings(children);
}

bool PrepareForRenamingStage::setDepths(const std::vector<RowId>& children, std::int32_t depth) {
    bool anyDiff = false;
    for (const RowId child : children) {
        setDepth(child, depth);
        anyDiff |= context->row(child).diff;
    }
    return anyDiff;
}

void PrepareForRenamingStage::linkSiblings(const std::vector<RowId>& children) {
    siblings.build(*context, children);
    caseCounts = wantNamesThatDifferInCase(children);
    for (const RowId child : children) {
        const RowId blocking = cannotBeRenamedBefore(child);
        if (blocking == noRow)
            continue;
        const bool isMutual = cannotBeRenamedBefore(blocking) == child;
        NodeRow& waiting = context->change(child);
        waiting.canBeRenamedIndependently = false;
        waiting.cannotBeRenamedBefore = blocking;
        waiting.mustBeSwapped |= isMutual;
        NodeRow& holder = context->change(blocking);
        holder.mustBeRenamedBefore = child;
        holder.mustBeSwapped |= isMutual;
        commitNowAndThen();
    }
    siblings.clear();
}

bool PrepareForRenamingStage::wantNamesThatDifferInCase(const std::vector<RowId>& children) {
    std::vector<std::size_t> hashes;
    for (const RowId child : children) {
        if (!context->row(child).hasExactName() || !context->row(child).diff)
            continue;
        context->finalName(child, finalName);
        if (!nameOnDisk::from(finalName, {}, wantedName, true))
            continue;
        text::lowercaseBytes(wantedName, lowerCased);
        hashes.push_back(std::hash<std::string>{}(lowerCased));
    }
    std::ranges::sort(hashes);
    return std::ranges::adjacent_find(hashes) != hashes.end();
}

RowId PrepareForRenamingStage::cannotBeRenamedBefore(RowId item) {
    // An item that stays as it is waits for nobody.
    if (!context->row(item).diff)
        return noRow;
    context->finalName(item, finalName);
    // What no file can be called is nobody's name.
    const bool isExact = context->row(item).hasExactName();
    if (!nameOnDisk::from(finalName, context->component(item), wantedName, isExact))
        return noRow;
    const RowId holder = siblings.find(wantedName);
    if (caseCounts && holder != noRow && context->component(holder) != wantedName)
        return noRow;
    // A change of case alone finds the item itself.
    return holder == item ? noRow : holder;
}

void PrepareForRenamingStage::setDepth(RowId id, std::int32_t depth) {
    if (context->row(id).depth == depth)
        return;
    context->change(id).depth = depth;
    commitNowAndThen();
}

void PrepareForRenamingStage::commitNowAndThen() {
    if (++changedRows == rowsPerCommit)
        saveAndRefaultObjects();
    else if (!context->commitIfMuchIsStaged())
        return;
    changedRows = 0;
}

} // namespace tavrin
