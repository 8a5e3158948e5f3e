#include "engine/naming/ComputeProvisionalNamesStage.h"

#include "actions/CompositeRenameAction.h"
#include "actions/sequence/SequenceAction.h"
#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/renaming/RenameEngineUtilities.h"
#include "platform/metadata/MetadataTool.h"
#include "platform/processes/RunLoop.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "store/queries/FilterManager.h"
#include "store/rows/FileMO.h"
#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

/// More would take memory that a list in a file is to spare.
constexpr std::size_t mostHashes = 2'000'000;
constexpr std::int32_t rowsPerCommit = 10000;

// Of new rows: how many are worth being shown in two parts, and what a large screen holds of them.
constexpr RowId manyNewRows = 1000;
constexpr std::ptrdiff_t rowsOnScreen = 100;

std::string stageTextForAction(int index) {
    static constexpr std::array<std::string_view, 9> ordinals{"first", "second",  "third", "fourth", "fifth",
                                                              "sixth", "seventh", "eight", "ninth"};
    if (index < static_cast<int>(ordinals.size()))
        return fmt::format("Applying {} renaming action...", ordinals[static_cast<std::size_t>(index)]);
    return fmt::format("Applying {}th renaming action...", index + 1);
}

const SortBasedAction* sorted(const auto& step) { return dynamic_cast<const SortBasedAction*>(step.action); }

bool countsByFolder(const auto& step) {
    const SortBasedAction* const action = sorted(step);
    return action != nullptr && !action->shouldUseGlobalSorting();
}

/// The end of the steps that a row goes through at once, from the first one on. Only the first may need
/// ranks; one that counts in each folder takes other rows than those behind it.
template <typename Iterator> Iterator endOfPass(Iterator first, Iterator end) {
    return countsByFolder(*first)
               ? first + 1
               : std::find_if(first + 1, end, [](const auto& step) { return sorted(step) != nullptr; });
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

ComputeProvisionalNamesStage::ComputeProvisionalNamesStage(EngineState& owner, Extent whichRows)
    : ProcessingStage(owner), extent(whichRows) {}

ComputeProvisionalNamesStage::~ComputeProvisionalNamesStage() = default;

std::string ComputeProvisionalNamesStage::stageDescription() const { return "Computing new file names..."; }

bool ComputeProvisionalNamesStage::process() {
    const StageProgress report(progress);
    isFirstPass = true;
    unread = {};
    if (extent == Extent::firstNewRows) {
        nameFirstRows();
        return true;
    }
    report.describe("Preparing..");
    report.indeterminate(true);
    report.item(0);
    report.numberOfItems(context->engineControl().totalNumberOfFiles);
    report.indeterminate(false);
    if (!copyActions())
        return false;
    prepareRows();
    engine.setHashesOfNames({});
    const bool areCompared = processed.size() <= mostHashes && settings.shouldPreviewConflictResolution &&
                             settings.conflictRule() == Settings::OnConflict::number;
    hashes.assign(areCompared ? processed.size() : 0, 0);
    const std::vector<Step> steps = activeSteps();
    const auto begin = static_cast<std::ptrdiff_t>(takeKnownNames(steps));
    for (auto first = steps.begin() + begin; first != steps.end();) {
        const auto last = endOfPass(first, steps.end());
        isLastPass = last == steps.end();
        processSteps({first, last});
        first = last;
    }
    keepNames(steps);
    tellUnreadMetadata();
    for (const std::string& reason : lostSteps)
        addError("All names stay as they are, since a step could not be made ready again", reason, "");
    if (isFirstPass)
        copyCurrentToNewName();
    engine.setHashesOfNames(std::move(hashes));
    engine.computeNumberOfFilesThatNeedRenaming(*context, settings.itemFilter());
    return true;
}

void ComputeProvisionalNamesStage::prepareRows() {
    filter = FilterManager::currentFilterPredicateIncludingAllFilesAndFolders(settings.itemFilter());
    file = std::make_unique<FileMO>(*context);
    findProcessedRows();
}

void ComputeProvisionalNamesStage::nameFirstRows() {
    if (context->endOfRows() - engine.firstNewRow() < manyNewRows)
        return;
    EngineHost& host = engine.host();
    host.runLoop().performAndWait([&] { shownList = host.shownList(); });
    if (!shownList || !copyActions())
        return;
    prepareRows();
    const std::vector<Step> steps = activeSteps();
    if (mayChange(shownList->order) || !canBeNamedEarly(steps))
        return;
    chooseFirstRows();
    for (auto first = steps.begin(); first != steps.end();) {
        const auto last = endOfPass(first, steps.end());
        processSteps({first, last});
        first = last;
    }
    chosen.clear();
    showFirstRows();
}

bool ComputeProvisionalNamesStage::canBeNamedEarly(Steps steps) {
    return std::ranges::all_of(steps, [this](const Step& step) {
        return step.action->goesByNameAlone() && !countsByFolder(step) && !mayChange(rowsFor(step).order);
    });
}

bool ComputeProvisionalNamesStage::mayChange(const std::vector<SortDescriptor>& order) {
    const bool goesByValues = std::ranges::any_of(
        order, [](const auto& key) { return attribute(key.key).columnClass == ColumnClass::values; });
    return goesByValues &&
           context->count(FetchEntity::file, Predicate::isFalse(NodeKey::sortingInformationLoaded)) > 0;
}

void ComputeProvisionalNamesStage::chooseFirstRows() {
    const std::vector<RowId> rows = context->fetch(*shownList);
    const auto arrivals = std::ranges::find_if(rows, [this](RowId id) { return id >= engine.firstNewRow(); });
    const auto begin = arrivals - std::min(rowsOnScreen / 2, arrivals - rows.begin());
    const auto end = arrivals + std::min(rowsOnScreen, rows.end() - arrivals);
    chosen.assign(context->endOfRows(), false);
    std::for_each(begin, end, [this](RowId id) { chosen[id] = true; });
}

void ComputeProvisionalNamesStage::processChosen(const std::vector<RowId>& rows) {
    std::int32_t rank = 1;
    for (const RowId id : rows) {
        if (chosen[id])
            processRow(id, rank);
        rank += isProcessed(id) ? 1 : 0;
    }
}

void ComputeProvisionalNamesStage::showFirstRows() {
    const RowFolders folders = context->foldersOf({shownList->entity, shownList->predicate, {}});
    EngineHost& host = engine.host();
    host.runLoop().performAndWait([&] {
        host.setListFolders(folders);
        host.showFirstRows();
    });
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

std::vector<ComputeProvisionalNamesStage::Step> ComputeProvisionalNamesStage::activeSteps() const {
    std::vector<Step> steps;
    for (int index = 0; index < compositeAction->count() && lostSteps.empty(); ++index) {
        BaseRenameAction& action = compositeAction->actionAtIndex(index);
        if (action.isActive())
            steps.push_back({index, &action});
    }
    return steps;
}

FetchRequest ComputeProvisionalNamesStage::rowsFor(const Step& step) const {
    FetchRequest request{FetchEntity::file, filter, {}, 0, true};
    if (const SortBasedAction* const action = sorted(step))
        request.order = RenameEngineUtilities::sortDescriptorsOf(*action);
    return request;
}

NamesBeforeStep::Origin ComputeProvisionalNamesStage::originOf(Steps steps) const {
    NamesBeforeStep::Origin origin{context->store().serial(), filter, {}, processed, {}};
    origin.versions.push_back(context->versionOf({FetchEntity::file, filter, {}}));
    for (const auto& [index, action] : steps) {
        origin.versions.push_back(context->versionOf(rowsFor({index, action})));
        origin.steps.push_back(PropertyDictionary{{"action name", text::fromUtf8(action->actionName())},
                                                  {"action parameter list", action->parameterList()}});
    }
    return origin;
}

std::size_t ComputeProvisionalNamesStage::takeKnownNames(Steps steps) {
    known = kept = nullptr;
    nextKnown = 0;
    NamesBeforeStep* const names = engine.namesBeforeStep();
    const auto inHand = std::ranges::find_if(
        steps, [&](const Step& step) { return step.index >= compositeAction->getCurrentActionIndexAsInt(); });
    // A step that counts by folder takes other rows than those in front of it.
    const bool takesOthers = std::any_of(steps.begin(), inHand == steps.end() ? inHand : std::next(inHand),
                                         [](const Step& step) { return countsByFolder(step); });
    if (names == nullptr || inHand == steps.begin() || inHand == steps.end() || takesOthers)
        return 0;
    const auto before = static_cast<std::size_t>(inHand - steps.begin());
    NamesBeforeStep::Origin origin = originOf(steps.first(before));
    if (names->isMadeOf(origin)) {
        known = names;
        return before;
    }
    names->begin(std::move(origin));
    kept = names;
    keptStep = steps[before - 1].index;
    return 0;
}

/// What a step has asked of the item, or of the clock, may be another answer next time. The rank follows from
/// the order of the rows.
void ComputeProvisionalNamesStage::keepNames(Steps steps) {
    const auto isSure = [this](const Step& step) {
        return step.index > keptStep || !step.action->hasAskedForItem() ||
               dynamic_cast<const SequenceAction*>(step.action) != nullptr;
    };
    if (kept == nullptr)
        return;
    if (std::ranges::all_of(steps, isSure))
        kept->end();
    else
        kept->clear();
}

void ComputeProvisionalNamesStage::processSteps(Steps steps) {
    for (const Step& step : steps)
        StageProgress(progress).stage(stageTextForAction(step.index));
    pass = steps;
    count = 0;
    FetchRequest request = rowsFor(steps.front());
    if (countsByFolder(steps.front()))
        processByFolder(std::move(request));
    else if (request.order.empty() && chosen.empty())
        processAll(request);
    else
        processRows(context->fetch(request));
    StageProgress(progress).describe("{} provisional names computed. Committing..", count);
    saveAndRefaultObjects();
    isFirstPass = false;
}

/// Without the filter: what lies below a listed folder is numbered too, and stays hidden by the filter.
void ComputeProvisionalNamesStage::processByFolder(FetchRequest request) {
    const FetchRequest folders{FetchEntity::node, Predicate::isTrue(NodeKey::treatAsFolder), {}, 0};
    for (const RowId folder : context->fetch(folders)) {
        request.predicate = Predicate::hasParent(folder);
        count = 0;
        processRows(context->fetch(request));
    }
}

/// In reading order, so that no list of them is needed.
void ComputeProvisionalNamesStage::processAll(const FetchRequest& request) {
    input.lastRank = 0;
    context->forEach(request, [this](RowId id) { input.lastRank += isProcessed(id) ? 1 : 0; });
    context->forEach(request, [this](RowId id) { processRow(id, count + 1); });
}

void ComputeProvisionalNamesStage::processRows(const std::vector<RowId>& rows) {
    input.lastRank =
        static_cast<std::int32_t>(std::ranges::count_if(rows, [this](RowId id) { return isProcessed(id); }));
    if (!chosen.empty())
        return processChosen(rows);
    if (!std::is_sorted(rows.begin(), rows.end()))
        return processByRank(rows);
    for (const RowId id : rows)
        processRow(id, count + 1);
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

/// Asked once for all rows: a look at each in each pass costs more than a short step.
void ComputeProvisionalNamesStage::findProcessedRows() {
    ItemFilter kinds = settings.itemFilter();
    kinds.shouldProcessSubfolders = true;
    const Predicate wanted = FilterManager::currentFilterPredicate(kinds).with(FilterManager::ticked());
    processed.assign(context->endOfRows(), false);
    context->forEach({FetchEntity::file, wanted, {}, 0}, [this](RowId id) { processed[id] = true; });
}

void ComputeProvisionalNamesStage::processRow(RowId id, std::int32_t rank) {
    const StageProgress report(progress);
    report.describeItem([&] { return "Processing: " + context->fullPath(id); });
    if (!isProcessed(id)) {
        if (isFirstPass)
            keepName(id);
        context->commitIfMuchIsStaged();
        return;
    }
    runSteps(id, rank);
    storeNewName(id);
    if (isLastPass && !hashes.empty())
        hashes[id] = hasher.of(output.newName);
    report.item(++count);
    if (count % rowsPerCommit == 0) {
        report.describe("{} new names calculated. Committing.", count);
        saveAndRefaultObjects();
    } else {
        context->commitIfMuchIsStaged();
    }
}

void ComputeProvisionalNamesStage::runSteps(RowId id, std::int32_t rank) {
    if (isFirstPass && known != nullptr)
        nameBefore = (*known)[nextKnown++];
    else if (isFirstPass)
        context->name(id, nameBefore);
    else
        context->finalName(id, nameBefore);
    file->moveTo(id);
    input.fileMo = file.get();
    input.rank = rank;
    output.regex.reset();
    output.newName = nameBefore;
    for (const Step& step : pass) {
        input.currentName.swap(output.newName);
        output.failure.clear();
        step.action->executeWithInputContext(input, output);
        replaceColons(output.newName);
        if (!output.failure.empty())
            noteUnreadMetadata(id, step, output.failure);
        if (kept != nullptr && step.index == keptStep)
            kept->add(output.newName);
    }
    if (output.regex)
        context->setRegexColumns(id, *output.regex);
}

void ComputeProvisionalNamesStage::noteUnreadMetadata(RowId id, const Step& step, const std::string& reason) {
    if (id >= unread.rows.size())
        unread.rows.resize(processed.size());
    if (unread.count == 0 || step.index < unread.step) {
        unread.step = step.index;
        unread.reason = reason;
    }
    if (unread.rows[id])
        return;
    unread.rows[id] = true;
    if (++unread.count == 1)
        unread.first = id;
}

void ComputeProvisionalNamesStage::tellUnreadMetadata() {
    if (unread.count > 0)
        addError(unreadMetadataOf(unread.count), unread.reason,
                 unread.count == 1 ? context->fullPath(unread.first) : "");
}

void ComputeProvisionalNamesStage::storeNewName(RowId id) {
    const std::u16string* own = &nameBefore;
    if (!isFirstPass && text::units::same(output.newName, nameBefore))
        return; // what the pass before has stored still holds
    if (!isFirstPass || known != nullptr) {
        context->name(id, ownName);
        own = &ownName;
    }
    if (text::units::same(output.newName, *own))
        return keepName(id);
    context->setFinalName(id, output.newName);
    setDiff(id, !text::canonicallyEqual(output.newName, *own));
}

void ComputeProvisionalNamesStage::keepName(RowId id) {
    context->setFinalNameToName(id);
    setDiff(id, false);
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
    count = 0;
    for (const RowId id : context->fetch({FetchEntity::file, filter, {}, 0})) {
        keepName(id);
        report.item(++count);
        context->commitIfMuchIsStaged();
    }
    report.describe("{} names left unchanged. Committing..", count);
    saveAndRefaultObjects();
}

} // namespace tavrin
