#include "engine/PerformRenameStage.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/EngineHost.h"
#include "engine/LibraryWarnings.h"
#include "engine/RenameChain.h"
#include "engine/RenameCycle.h"
#include "engine/RenameEngine.h"
#include "engine/RenamePair.h"
#include "engine/RenameRun.h"
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

PerformRenameStage::PerformRenameStage(RenameEngine& owner) : ProcessingStage(owner) {}

PerformRenameStage::~PerformRenameStage() = default;

bool PerformRenameStage::process() {
    switchToLionModeOnce();
    prepare();
    const FetchRequest request = openItems();
    while (!run->questions.shouldAbort() && performBatch(request)) {
    }
    warnings.reset();
    return true;
}

void PerformRenameStage::breakOff(const std::string& reason) {
    const std::int32_t renamed = run ? run->primitives.actuallyRenamedCounter : 0;
    EngineControl& control = context->changeEngineControl();
    control.numberOfActuallyRenamedFiles = renamed;
    if (renamed < control.numberOfFilesThatNeedRenaming || !run)
        addError("The renaming was broken off",
                 fmt::format("{}. {} of {} items had been renamed by then, the others were not renamed.",
                             reason, renamed, control.numberOfFilesThatNeedRenaming),
                 {});
    context->commit();
    // The last batch has not told its paths yet. The rows are gone, so this reads none.
    if (run)
        run->sourceItems.apply();
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
    warnings = std::make_unique<LibraryWarnings>(settings.shouldPreventAccidentalITunesLibraryDamage(),
                                                 settings.shouldPreventAccidentalIPhotoLibraryDamage());
    setNumberOfActuallyRenamedFiles();
}

FetchRequest PerformRenameStage::openItems() const {
    return {FetchEntity::file,
            FilterManager::currentFilterPredicate(engine.host().globalSettings().itemFilter())
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
    setNumberOfActuallyRenamedFiles();
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
