#include "engine/renaming/PerformRenameStage.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "documents/recipe/RecipeText.h"
#include "engine/asking/LibraryWarnings.h"
#include "engine/history/RunHistory.h"
#include "engine/history/RunJournal.h"
#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/renaming/RenameRing.h"
#include "engine/renaming/RenameRun.h"
#include "engine/renaming/RenamesAhead.h"
#include "engine/renaming/RunOrder.h"
#include "platform/processes/RunLoop.h"
#include "platform/propertylists/UserDefaults.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/StoreError.h"
#include "store/queries/FilterManager.h"
#include "support/application/DebugLog.h"
#include "support/application/MacOSXVersion.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <algorithm>
#include <span>
#include <unordered_map>

namespace tavrin {

namespace {

constexpr int lionMode = 0;
constexpr int leopardMode = 2;
constexpr std::string_view switchedKey = "alreadySwitchedToLionModeOnce";

std::shared_ptr<const RunPurpose> renamingAsSelected(const EngineState& engine) {
    RunPurpose purpose;
    purpose.linksAreItems = engine.selection().renamesLinks;
    return std::make_shared<RunPurpose>(std::move(purpose));
}

} // namespace

PerformRenameStage::PerformRenameStage(EngineState& owner, std::shared_ptr<const RunPurpose> whatFor)
    : ProcessingStage(owner), purpose(whatFor ? std::move(whatFor) : renamingAsSelected(owner)) {}

PerformRenameStage::~PerformRenameStage() = default;

/// What is taken back, or finished, tells it itself.
std::string PerformRenameStage::recipeOfRun() const {
    return purpose->what == RunKind::rename
               ? text::toUtf8(RecipeText::write(RecipeText::withoutStatus(engine.namesMadeBy())))
               : std::string();
}

bool PerformRenameStage::process() {
    switchToLionModeOnce();
    prepare();
    if (beginJournal()) {
        RunOrder order(*context, plannedItems(), run->marker,
                       run->questions.isInteractive() ? RunOrder::Form::byName : RunOrder::Form::byFolder);
        while (!run->questions.shouldAbort()) {
            const std::vector<RowId> items = order.next();
            if (items.empty())
                break;
            performBatch(items);
        }
    }
    closeJournal(run->questions.shouldAbort());
    run->outcomes.end(run->questions.shouldAbort());
    run->tellMoves();
    warnings.reset();
    return true;
}

bool PerformRenameStage::beginJournal() {
    engine.noteRecord({});
    const HistoryPlace& place = engine.historyPlace();
    const bool isKept = settings.shouldKeepHistory() && !place.folder.empty();
    const bool isNeeded =
        purpose->what != RunKind::rename || context->engineControl().numberOfFilesThatNeedRenaming > 0;
    if (!isKept || !isNeeded || run->questions.shouldAbort())
        return true;
    run->report.describe("Recording..");
    journal = std::make_unique<RunJournal>(place, recipeOfRun());
    const std::string problem = journal->begin(*context, plannedItems(), run->standIns, *purpose);
    if (!problem.empty()) {
        journal.reset();
        return run->questions.confirmWithoutRecord(problem);
    }
    run->primitives.onReplaced = [this](RowId row, const FileIdentity& found) { journal->late(row, found); };
    run->onFlagRefused = [this](std::uint32_t device) { journal->flagRefused(device); };
    engine.noteRecord(journal->runName());
    RunHistory(place.folder).prune(place.limits());
    return true;
}

Predicate PerformRenameStage::plannedItems() const {
    return FilterManager::currentFilterPredicate(run->filter).with(Predicate::isTrue(NodeKey::diff));
}

void PerformRenameStage::closeJournal(bool wasStopped) {
    if (!journal)
        return;
    const std::int32_t changed = run->primitives.actuallyRenamedCounter;
    if (!wasStopped || changed == 0 || !engine.isSessionEnding())
        journal->close(changed, purpose->failedBefore + run->failedCounter, wasStopped);
    journal.reset();
}

void PerformRenameStage::breakOff(const std::string& reason) {
    closeJournal(true);
    const std::int32_t renamed = run ? run->primitives.actuallyRenamedCounter : 0;
    EngineControl& control = context->changeEngineControl();
    control.numberOfActuallyRenamedFiles = renamed;
    control.numberOfItemsNotRenamed = control.numberOfFilesThatNeedRenaming - renamed;
    if (renamed < control.numberOfFilesThatNeedRenaming || !run)
        addError("The renaming was broken off",
                 fmt::format("{}. {} of {} items had been renamed by then, the others were not renamed.",
                             reason, renamed, control.numberOfFilesThatNeedRenaming),
                 {});
    context->commit();
    // The last batch has not told its paths yet. The rows are gone, so this reads none.
    if (run) {
        run->sourceItems.apply();
        run->tellMoves();
    }
}

void PerformRenameStage::switchToLionModeOnce() {
    UserDefaults& defaults = UserDefaults::sharedInstance();
    if (!MacOSXVersion::isLionOrLater() || settings.renameMode != leopardMode ||
        defaults.boolForKey(switchedKey))
        return;
    // Settings are written on the main thread alone.
    static_cast<void>(
        engine.host().runLoop().performAndWait([&] { engine.host().globalSettings().setLionMode(); }));
    settings.renameMode = lionMode;
    defaults.setObject(switchedKey, true);
}

void PerformRenameStage::prepare() {
    const StageProgress report(progress);
    report.describe("Preparing..");
    report.indeterminate(true);
    report.item(0);
    const bool shouldBeInteractive =
        purpose->asks.value_or(settings.shouldInteract() && !engine.host().isSilentDroplet());
    run = std::make_unique<RenameRun>(engine, *this, *context, progress, shouldBeInteractive);
    // Who takes a run back has been warned before it.
    const bool warns = !purpose->isStrict;
    warnings =
        std::make_unique<LibraryWarnings>(warns && settings.shouldPreventAccidentalITunesLibraryDamage,
                                          warns && settings.shouldPreventAccidentalIPhotoLibraryDamage);
    run->filter = settings.itemFilter();
    run->givesNamesOfList = purpose->what == RunKind::rename;
    if (purpose->isStrict) {
        run->filter = {true, true, true};
        run->primitives.beStrict();
    }
    if (purpose->linksAreItems)
        run->primitives.takeLinks();
    ahead = std::make_unique<RenamesAhead>(
        *context, run->folders,
        [this](RowId id, const std::string& folder, const std::string& component) {
            return !run->questions.isInteractive() && run->isInPlace(id) &&
                   context->stageFlag(id) != run->marker && !warnings->wouldAsk(folder, component);
        },
        [this] { return engine.isStopRequested(); });
    std::vector<bool> isPlanned(context->endOfRows());
    std::int32_t count = 0;
    context->forEach({FetchEntity::file, plannedItems(), {}, 0}, [&](RowId row) {
        isPlanned[row] = true;
        ++count;
    });
    run->outcomes.begin(std::move(isPlanned), rowsOfList());
    context->changeEngineControl().numberOfFilesThatNeedRenaming = count;
    report.numberOfItems(count);
    report.indeterminate(false);
    setCounters();
}

std::optional<std::vector<RowId>> PerformRenameStage::rowsOfList() const {
    if (!purpose->isOnList)
        return std::nullopt;
    std::unordered_map<std::string, RowId> byPath;
    context->forEach({FetchEntity::file, plannedItems(), {}, 0},
                     [&](RowId row) { byPath.emplace(context->fullPath(row), row); });
    std::vector<RowId> rows;
    ItemStore* const store = engine.host().persistentStoreCoordinator();
    if (store == nullptr)
        return rows;
    try {
        StoreContext list(*store, StoreContext::MergePolicy::storeWins);
        rows.resize(list.endOfRows(), noRow);
        for (const RowId row : list.fetch({FetchEntity::file, Predicate::always(), {}, 0}))
            if (const auto found = byPath.find(list.fullPath(row)); found != byPath.end())
                rows[row] = found->second;
    } catch (const StoreError& error) {
        debugLog("the list shows no marks of this run: {}", error.what());
    }
    return rows;
}

void PerformRenameStage::performBatch(const std::vector<RowId>& items) {
    run->primitives.takeSettings(settings.renameMode, settings.shouldCopyFileComments != 0);
    std::size_t next = 0; // that has not been thought of ahead
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (i == next && !mustStop(items[i]))
            next +=
                run->primitives.areRenamesPlain() ? ahead->run(std::span(items).subspan(i)) : items.size();
        if (!mustStop(items[i]))
            performItem(items[i]);
    }
    run->report.describe("Renamed {} files. Committing..", run->primitives.actuallyRenamedCounter);
    setCounters();
    saveAndRefaultObjects();
    run->report.describe("Updating source items..");
    run->sourceItems.apply();
}

/// Before this item. One that has been renamed ahead is come to all the same.
bool PerformRenameStage::mustStop(RowId id) const {
    return run->questions.shouldAbort() && !ahead->hasTried(id);
}

void PerformRenameStage::performItem(RowId id) {
    run->item.moveTo(id);
    if (!warnings->check(run->item.folder(), run->item.component(), run->questions))
        return;
    if (context->stageFlag(id) == run->marker)
        return;
    const NodeRow row = context->row(id);
    const RowId partner = row.mustBeRenamedBefore;
    if (row.mustBeSwapped && partner != noRow)
        RenameRing(*run, {id, partner}).resolve();
    else if (row.canBeRenamedIndependently)
        walkChainInHand();
    else
        performWaitingItem(id);
}

void PerformRenameStage::walkChain(RowId head) {
    run->item.moveTo(head);
    walkChainInHand();
}

void PerformRenameStage::walkChainInHand() {
    const RowId head = run->item.id();
    // The head decides for all.
    const bool treatAsRoot = run->item.isRoot() && run->sourceItems.areWanted();
    for (RowId id = head; id != noRow;) {
        if (!performInChain(id == head, treatAsRoot))
            return;
        id = context->row(id).mustBeRenamedBefore;
        // Links of a sound plan never lead back; those of a broken one must not lead round for ever.
        if (id == noRow || context->stageFlag(id) == run->marker || !context->exists(id))
            return;
        debugLog("****** dependency chain resolved ");
        run->item.moveTo(id);
    }
}

bool PerformRenameStage::performInChain(bool isHead, bool treatAsRoot) {
    if (mustStop(run->item.id()))
        return false;
    run->outcomes.set(run->item.id(), RunOutcome::inHand);
    const UserQuestions::Decision decision = ask(isHead);
    if (decision == UserQuestions::Decision::stop) {
        run->outcomes.set(run->item.id(), RunOutcome::open);
        return false;
    }
    if (decision == UserQuestions::Decision::perform)
        renameItem(treatAsRoot);
    else
        run->outcomes.set(run->item.id(), RunOutcome::leftOut);
    context->setStageFlag(run->item.id(), run->marker);
    return true;
}

UserQuestions::Decision PerformRenameStage::ask(bool isHead) {
    RenameItem& item = run->item;
    if (!run->questions.isInteractive())
        return UserQuestions::Decision::perform;
    RenameQuestion question{item.folder(), std::nullopt, item.shownName(), item.shownFinalName()};
    if (isHead)
        question.fullPath = item.fullPath();
    return run->questions.confirmRename(question);
}

void PerformRenameStage::renameItem(bool treatAsRoot) {
    RenameItem& item = run->item;
    RenamePrimitives& primitives = run->primitives;
    const bool isHere = run->isInPlace(item.id());
    const bool worked =
        isHere ? primitives.renameItem(item) : primitives.refuse("It has been renamed already");
    if (worked) {
        if (treatAsRoot)
            run->sourceItems.change(item.fullPath(), joinedPath(item.folder(), item.newComponent()));
        run->noteMoved(item.id());
        run->outcomes.set(item.id(), RunOutcome::done);
        run->noteTakenPlace(context->row(item.id()).cannotBeRenamedBefore);
        run->tellRenamed(item.folder(), item.component(), item.newComponent(), true);
    } else {
        if (const std::string& left = run->mover.leftUnder(); isHere && !left.empty())
            run->tellRenamed(item.folder(), item.component(), left, false);
        run->fail({item.id()}, "Could not change a file name", primitives.failureReasonString(),
                  primitives.failureDetail(), item.fullPath());
    }
    run->report.describeItem(
        [&] { return fmt::format("Renaming {} to {}", item.fullPath(), item.shownFinalName()); });
}

/// What waits for a name and was reached by no chain: members of a ring, and items that wait in vain.
void PerformRenameStage::performWaitingItem(RowId id) {
    std::vector<RowId> way;
    RowSet seen;
    RowId next = id;
    while (next != noRow && seen.insert(next)) {
        way.push_back(next);
        next = holderOfWantedName(next);
    }
    if (next != noRow) {
        const auto first = std::find(way.begin(), way.end(), next);
        RenameRing(*run, {first, way.end()}).resolve();
        way.erase(first, way.end());
    }
    // The last one first: if its name is free all the same, the others can follow.
    for (; !way.empty() && !run->questions.shouldAbort(); way.pop_back()) {
        if (context->stageFlag(way.back()) != run->marker)
            walkChain(way.back());
    }
}

RowId PerformRenameStage::holderOfWantedName(RowId id) {
    const RowId holder = context->row(id).cannotBeRenamedBefore;
    if (holder == noRow || context->stageFlag(holder) == run->marker || !context->exists(holder))
        return noRow;
    const NodeRow row = context->row(holder);
    // What takes no part keeps its name.
    const bool takesPart = row.diff && !row.canBeRenamedIndependently && run->filter.admits(row);
    return takesPart ? holder : noRow;
}

void PerformRenameStage::setCounters() {
    context->changeEngineControl().numberOfActuallyRenamedFiles = run->primitives.actuallyRenamedCounter;
    context->changeEngineControl().numberOfItemsNotRenamed = run->failedCounter;
}

} // namespace tavrin
