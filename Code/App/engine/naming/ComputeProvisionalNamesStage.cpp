#include "engine/naming/ComputeProvisionalNamesStage.h"

#include "actions/CompositeRenameAction.h"
#include "actions/SortBasedAction.h"
#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/renaming/RenameEngineUtilities.h"
#include "platform/metadata/MetadataTool.h"
#include "platform/processes/RunLoop.h"
#include "store/contexts/StoreContext.h"
#include "store/queries/FilterManager.h"
#include "store/rows/FileMO.h"
#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr std::int32_t rowsPerCommit = 10000;
constexpr std::size_t unchangedBatchSize = 1000;

std::string stageTextForAction(int index) {
    static constexpr std::array<std::string_view, 9> ordinals{"first", "second",  "third", "fourth", "fifth",
                                                              "sixth", "seventh", "eight", "ninth"};
    if (index < static_cast<int>(ordinals.size()))
        return fmt::format("Applying {} renaming action...", ordinals[static_cast<std::size_t>(index)]);
    return fmt::format("Applying {}th renaming action...", index + 1);
}

/// A unit that is a colon becomes zero, and a zero unit borrows from its highest bit.
bool hasNoColon(std::u16string_view name) {
    using namespace text::units;
    return none(name, [](std::uint64_t word) {
        const std::uint64_t difference = word ^ everyUnit(u':');
        return (difference - everyUnit(1)) & ~difference & everyUnit(0x8000);
    });
}

/// Names shown never hold the separator of the other side.
void replaceColons(std::u16string& name) {
    if (!hasNoColon(name))
        text::replaceUnit(name, u':', u'/');
}

} // namespace

ComputeProvisionalNamesStage::ComputeProvisionalNamesStage(EngineState& owner) : ProcessingStage(owner) {}

ComputeProvisionalNamesStage::~ComputeProvisionalNamesStage() = default;

std::string ComputeProvisionalNamesStage::stageDescription() const { return "Computing new file names..."; }

bool ComputeProvisionalNamesStage::process() {
    const StageProgress report(progress);
    isFirstAppliedAction = true;
    unread = {};
    report.describe("Preparing..");
    report.indeterminate(true);
    report.item(0);
    report.numberOfItems(context->engineControl().totalNumberOfFiles);
    report.indeterminate(false);
    processFiles = settings.shouldProcessFiles != 0;
    processFolders = settings.shouldProcessFolders != 0;
    filter = FilterManager::currentFilterPredicateIncludingAllFilesAndFolders(settings.itemFilter());
    if (!copyActions())
        return false;
    file = std::make_unique<FileMO>(*context);
    for (int index = 0; index < compositeAction->count() && lostSteps.empty(); ++index) {
        if (compositeAction->actionAtIndex(index).isActive())
            processForActionIndex(index);
    }
    tellUnreadMetadata();
    for (const std::string& reason : lostSteps)
        addError("All names stay as they are, since a step could not be made ready again", reason, "");
    if (isFirstAppliedAction)
        copyCurrentToNewName();
    engine.computeNumberOfFilesThatNeedRenaming(*context, settings.itemFilter());
    return true;
}

/// The list belongs to the main thread, which edits it; so it is read there. What the user sees as able to
/// work may not be so any more, since a file is looked at a second time.
bool ComputeProvisionalNamesStage::copyActions() {
    EngineHost& host = engine.host();
    PropertyDictionary list;
    std::vector<bool> worked;
    const bool isCopied = host.runLoop().performAndWait([&] {
        list = host.compositeAction().getFlatParameterList();
        for (const auto& step : host.compositeAction().getActionDictionaryList()) {
            step->prepare();
            worked.push_back(step->failure().empty());
        }
    });
    if (!isCopied)
        return false;
    compositeAction = std::make_unique<CompositeRenameAction>(ActionUse::privateRun);
    compositeAction->setFlatParameterList(list);
    engine.setChainOfNames(std::move(list));
    lostSteps.clear();
    for (std::size_t i = 0; i < worked.size(); ++i) {
        BaseRenameAction& step = compositeAction->actionAtIndex(static_cast<int>(i));
        step.prepare();
        if (const std::string reason = step.failure(); worked[i] && step.isActive() && !reason.empty())
            lostSteps.push_back(fmt::format("{}: {}", step.actionName(), reason));
    }
    return true;
}

void ComputeProvisionalNamesStage::processForActionIndex(int index) {
    const StageProgress report(progress);
    report.stage(stageTextForAction(index));
    action = &compositeAction->actionAtIndex(index);
    marker = engine.nextStageFlagCounter();
    count = 0;
    FetchRequest request{FetchEntity::file, filter.with(Predicate::notMarked(marker)), {}, 0, true};
    const auto* sorted = dynamic_cast<const SortBasedAction*>(action);
    const bool byFolder = sorted && !sorted->shouldUseGlobalSorting();
    if (sorted)
        request.order = RenameEngineUtilities::sortDescriptorsOf(*sorted);
    for (;;) {
        if (byFolder) {
            count = 0;
            if (!moveToNextFolder(request))
                break;
        }
        const std::vector<RowId> rows = context->fetch(request);
        input.lastRank = sorted ? count + countNumbered(rows) : 1;
        if (std::is_sorted(rows.begin(), rows.end())) {
            for (const RowId id : rows)
                processRow(id, count + 1);
        } else {
            processByRank(rows);
        }
        report.describe("{} provisional names computed. Committing..", count);
        saveAndRefaultObjects();
        if (!byFolder && rows.empty())
            break;
    }
    isFirstAppliedAction = false;
}

bool ComputeProvisionalNamesStage::moveToNextFolder(FetchRequest& request) {
    const FetchRequest folders{
        FetchEntity::node,
        Predicate::notSecondaryMarked(marker).with(Predicate::isTrue(NodeKey::treatAsFolder)),
        {},
        1};
    const std::vector<RowId> folder = context->fetch(folders);
    if (folder.empty())
        return false;
    context->setSecondaryStageFlag(folder.front(), marker);
    // Without the filter: what lies below a listed folder is numbered too, and stays hidden by the filter.
    request.predicate = Predicate::hasParent(folder.front()).with(Predicate::notMarked(marker));
    return true;
}

std::int32_t ComputeProvisionalNamesStage::countNumbered(const std::vector<RowId>& rows) const {
    return static_cast<std::int32_t>(
        std::ranges::count_if(rows, [this](RowId id) { return isProcessed(id); }));
}

/// A name depends on its rank, not on when it is made. So the ranks are given out first, and then the rows
/// are taken as they lie: out of their order each would call for its block, and for its segment of the file,
/// anew.
void ComputeProvisionalNamesStage::processByRank(const std::vector<RowId>& rows) {
    const auto [lowest, highest] = std::minmax_element(rows.begin(), rows.end());
    const RowId first = *lowest;
    std::vector<std::int32_t> ranks(*highest - first + 1, 0); // from 1; skipped rows have that of the next
    std::int32_t rank = 1;
    for (const RowId id : rows) {
        ranks[id - first] = rank;
        rank += isProcessed(id) ? 1 : 0;
    }
    for (std::size_t i = 0; i < ranks.size(); ++i) {
        if (ranks[i] != 0)
            processRow(first + static_cast<RowId>(i), ranks[i]);
    }
}

bool ComputeProvisionalNamesStage::isProcessed(RowId id) const {
    return (context->treatAsFolder(id) ? processFolders : processFiles) && !context->isLeftOut(id);
}

void ComputeProvisionalNamesStage::processRow(RowId id, std::int32_t rank) {
    const StageProgress report(progress);
    report.describeItem([&] { return "Processing: " + context->fullPath(id); });
    if (isFirstAppliedAction)
        context->name(id, input.currentName);
    else
        context->finalName(id, input.currentName);
    const bool counts = isProcessed(id);
    if (counts) {
        input.rank = rank;
        runAction(id);
        report.item(++count);
    } else {
        output.newName = input.currentName;
    }
    storeNewName(id);
    context->setStageFlag(id, marker);
    if (counts && count % rowsPerCommit == 0) {
        report.describe("{} new names calculated. Committing.", count);
        saveAndRefaultObjects();
    } else {
        context->commitIfMuchIsStaged();
    }
}

void ComputeProvisionalNamesStage::runAction(RowId id) {
    replaceColons(input.currentName);
    file->moveTo(id);
    input.fileMo = file.get();
    output.regex.reset();
    output.failure.clear();
    action->executeWithInputContext(input, output);
    replaceColons(output.newName);
    if (output.regex)
        context->setRegexColumns(id, *output.regex);
    if (!output.failure.empty())
        noteUnreadMetadata(id, output.failure);
}

void ComputeProvisionalNamesStage::noteUnreadMetadata(RowId id, const std::string& reason) {
    if (id >= unread.rows.size())
        unread.rows.resize(id + id / 2 + 1024);
    if (unread.rows[id])
        return;
    unread.rows[id] = true;
    if (++unread.count > 1)
        return;
    unread.first = id;
    unread.reason = reason;
}

void ComputeProvisionalNamesStage::tellUnreadMetadata() {
    if (unread.count > 0)
        addError(unreadMetadataOf(unread.count), unread.reason,
                 unread.count == 1 ? context->fullPath(unread.first) : "");
}

void ComputeProvisionalNamesStage::storeNewName(RowId id) {
    // The first action worked on the name itself, later ones on the result of the one before.
    const std::u16string* name = &input.currentName;
    if (!isFirstAppliedAction) {
        if (text::units::same(output.newName, input.currentName))
            return; // what the one before has stored still holds
        context->name(id, nameBuffer);
        name = &nameBuffer;
    }
    const bool isName = text::units::same(output.newName, *name);
    if (isName)
        context->setFinalNameToName(id);
    else
        context->setFinalName(id, output.newName);
    const bool differs = !isName && !text::canonicallyEqual(output.newName, *name);
    setDiff(id, differs);
}

void ComputeProvisionalNamesStage::setDiff(RowId id, bool differs) {
    const NodeRow& present = context->row(id);
    if (present.diff == differs && !present.madeDistinct && !present.hasExactName())
        return;
    NodeRow& row = context->change(id);
    row.diff = differs;
    row.madeDistinct = false;
    if (row.hasExactName())
        row.namedBy = NamedBy::steps;
}

void ComputeProvisionalNamesStage::copyCurrentToNewName() {
    const StageProgress report(progress);
    report.stage("No renaming action are active...");
    marker = engine.nextStageFlagCounter();
    count = 0;
    const FetchRequest request{
        FetchEntity::file, filter.with(Predicate::notMarked(marker)), {}, unchangedBatchSize};
    for (std::vector<RowId> batch; !(batch = context->fetch(request)).empty();) {
        for (const RowId id : batch) {
            context->setFinalNameToName(id);
            setDiff(id, false);
            context->setStageFlag(id, marker);
            report.item(++count);
        }
        report.describe("{} names left unchanged. Committing..", count);
        saveAndRefaultObjects();
    }
}

} // namespace tavrin
