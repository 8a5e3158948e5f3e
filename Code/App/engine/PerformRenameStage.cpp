#include "engine/PerformRenameStage.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/EngineHost.h"
#include "engine/LibraryWarnings.h"
#include "engine/RenameChain.h"
#include "engine/RenameEngine.h"
#include "engine/RenameRing.h"
#include "engine/RenameRun.h"
#include "platform/RunLoop.h"
#include "platform/UserDefaults.h"
#include "store/FilterManager.h"
#include "store/StoreContext.h"
#include "support/MacOSXVersion.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::size_t itemsPerBatch = 1000;
constexpr int leopardMode = 2;
constexpr std::string_view switchedKey = "alreadySwitchedToLionModeOnce";

} // namespace

PerformRenameStage::PerformRenameStage(RenameEngine& owner) : ProcessingStage(owner) {}

PerformRenameStage::~PerformRenameStage() = default;

bool PerformRenameStage::process() {
    switchToLionModeOnce();
    prepare();
    const FetchRequest request = openItems();
    while (!run->questions.shouldAbort() && performBatch(request)) {
    }
    run.reset();
    warnings.reset();
    return true;
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
    engine.computeNumberOfFilesThatNeedRenaming(*context);
    report.numberOfItems(context->engineControl().numberOfFilesThatNeedRenaming);
    report.indeterminate(false);

    const TVRNGlobalPreferencesPseudoAction& settings = engine.host().globalSettings();
    const bool shouldBeInteractive = settings.shouldInteract() && !engine.host().isSilentDroplet();
    run = std::make_unique<RenameRun>(engine, *this, *context, progress, shouldBeInteractive);
    run->filter = settings.itemFilter();
    warnings = std::make_unique<LibraryWarnings>(settings.shouldPreventAccidentalITunesLibraryDamage(),
                                                 settings.shouldPreventAccidentalIPhotoLibraryDamage());
    setCounters();
}

FetchRequest PerformRenameStage::openItems() const {
    return {FetchEntity::file,
            FilterManager::currentFilterPredicate(run->filter)
                .with(Predicate::isTrue(NodeKey::diff))
                .with(Predicate::notMarked(run->marker)),
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
    setCounters();
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
        RenameRing(*run, {id, partner}).resolve();
    else if (row.canBeRenamedIndependently)
        RenameChain(*run).walk(id);
    else
        performWaitingItem(id);
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
            RenameChain(*run).walk(way.back());
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
