#include "engine/PerformRenameStage.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/EngineHost.h"
#include "engine/LibraryWarnings.h"
#include "engine/RenameChain.h"
#include "engine/RenameCycle.h"
#include "engine/RenameEngine.h"
#include "engine/RenamePair.h"
#include "engine/RenameRun.h"
#include "engine/RunHistory.h"
#include "engine/RunJournal.h"
#include "engine/StandIns.h"
#include "platform/RunLoop.h"
#include "platform/UserDefaults.h"
#include "store/FilterManager.h"
#include "store/StoreContext.h"
#include "support/MacOSXVersion.h"

namespace tavrin {

namespace {

constexpr std::size_t itemsPerBatch = 1000;
constexpr int leopardMode = 2;
constexpr std::string_view switchedKey = "alreadySwitchedToLionModeOnce";

} // namespace

PerformRenameStage::PerformRenameStage(RenameEngine& owner, std::shared_ptr<const RunPurpose> whatFor)
    : ProcessingStage(owner), purpose(whatFor ? std::move(whatFor) : std::make_shared<RunPurpose>()) {}

PerformRenameStage::~PerformRenameStage() = default;

bool PerformRenameStage::process() {
    switchToLionModeOnce();
    prepare();
    const FetchRequest request = openItems();
    if (beginJournal()) {
        while (!run->questions.shouldAbort() && performBatch(request)) {
        }
    }
    if (journal)
        journal->close(run->primitives.actuallyRenamedCounter,
                       purpose->failedBefore + run->questions.failureCount(), run->questions.shouldAbort());
    journal.reset();
    run.reset();
    warnings.reset();
    return true;
}

bool PerformRenameStage::beginJournal() {
    const HistoryPlace& place = engine.historyPlace();
    const bool isKept = engine.host().globalSettings().shouldKeepHistory() && !place.folder.empty();
    const bool isNeeded =
        purpose->what != RunKind::rename || context->engineControl().numberOfFilesThatNeedRenaming > 0;
    if (!isKept || !isNeeded || run->questions.shouldAbort())
        return true;
    run->report.describe("Recording..");
    journal = std::make_unique<RunJournal>(place);
    StandIns standIns;
    const std::string problem = journal->begin(*context, plannedItems(), standIns, *purpose);
    if (problem.empty()) {
        run->journal = journal.get();
        RunHistory(place.folder).prune();
        return true;
    }
    journal.reset();
    return run->questions.confirmWithoutRecord(problem);
}

Predicate PerformRenameStage::plannedItems() const {
    const Predicate taking =
        purpose->isStrict
            ? Predicate::always()
            : FilterManager::currentFilterPredicate(engine.host().globalSettings().itemFilter());
    return taking.with(Predicate::isTrue(NodeKey::diff));
}

void PerformRenameStage::switchToLionModeOnce() {
    TVRNGlobalPreferencesPseudoAction& settings = engine.host().globalSettings();
    UserDefaults& defaults = UserDefaults::sharedInstance();
    if (!MacOSXVersion::isLionOrLater() || settings.getRenameMode() != leopardMode ||
        defaults.boolForKey(switchedKey))
        return;
    // Settings are written on the main thread alone.
    static_cast<void>(engine.host().runLoop().performAndWait([&] { settings.setLionMode(); }));
    defaults.setObject(switchedKey, true);
}

void PerformRenameStage::prepare() {
    const StageProgress report(progress);
    report.describe("Preparing..");
    report.indeterminate(true);
    report.item(0);
    context->changeEngineControl().numberOfFilesThatNeedRenaming =
        static_cast<std::int32_t>(context->count(FetchEntity::file, plannedItems()));
    report.numberOfItems(context->engineControl().numberOfFilesThatNeedRenaming);
    report.indeterminate(false);

    const TVRNGlobalPreferencesPseudoAction& settings = engine.host().globalSettings();
    const bool shouldBeInteractive =
        purpose->asks.value_or(settings.shouldInteract() && !engine.host().isSilentDroplet());
    run = std::make_unique<RenameRun>(engine, *this, *context, progress, shouldBeInteractive);
    run->isStrict = purpose->isStrict;
    // Who takes a run back has been warned before it.
    warnings = std::make_unique<LibraryWarnings>(
        !purpose->isStrict && settings.shouldPreventAccidentalITunesLibraryDamage(),
        !purpose->isStrict && settings.shouldPreventAccidentalIPhotoLibraryDamage());
    setNumberOfActuallyRenamedFiles();
}

FetchRequest PerformRenameStage::openItems() const {
    return {FetchEntity::file,
            plannedItems().with(Predicate::notMarked(run->marker)),
            {{NodeKey::depth, false},
             {NodeKey::mustBeSwapped, false},
             {NodeKey::canBeRenamedIndependently, false},
             {NodeKey::name, true}},
            itemsPerBatch};
}

bool PerformRenameStage::performBatch(const FetchRequest& request) {
    const std::vector<RowId> items = context->fetch(request);
    if (items.empty())
        return false;
    const TVRNGlobalPreferencesPseudoAction& settings = engine.host().globalSettings();
    run->primitives.takeSettings(settings.getRenameMode(), settings.shouldCopyFileComments() != 0);
    for (const RowId item : items) {
        if (run->questions.shouldAbort())
            break;
        performItem(item);
    }
    run->report.describe("Renamed {} files. Committing..", run->primitives.actuallyRenamedCounter);
    setNumberOfActuallyRenamedFiles();
    // After a commit that failed the marks stay staged, so that no item comes twice.
    saveAndRefaultObjects();
    run->report.describe("Updating source items..");
    run->sourceItems.apply();
    return true;
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
        RenamePair(*run).exchange(id, partner);
    else if (row.canBeRenamedIndependently)
        RenameChain(*run).walk(id);
    else
        RenameCycle(*run).resolve(id);
}

void PerformRenameStage::setNumberOfActuallyRenamedFiles() {
    context->changeEngineControl().numberOfActuallyRenamedFiles = run->primitives.actuallyRenamedCounter;
}

} // namespace tavrin
