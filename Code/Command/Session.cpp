#include "Session.h"

#include "PathArguments.h"
#include "PathList.h"
#include "RecipeLoader.h"
#include "actions/CompositeRenameAction.h"
#include "platform/files/AbsolutePaths.h"
#include "platform/propertylists/UserDefaults.h"
#include "shell/MainController.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>

namespace tavrin {

namespace {

MainController::Options controllerOptions() {
    MainController::Options options = MainController::Options::standard();
    options.usesUserFolders = false;
    options.followsChanges = false;
    options.history.who = "tvrn";
    // The records are the window's too, so they stay for as long as its user wants.
    options.history.limits = [] { return HistoryLimits::of(UserDefaults(UserDefaults::defaultPath())); };
    return options;
}

} // namespace

Session::Session(bool storeInFile)
    : interrupts([this] { wasToldToStop(); }), frontEnd(connectedTerminal, loop, interrupts),
      renamePrinter(connectedTerminal) {
    SystemLog::setSharedInstance(&systemLog);
    setDefaults(storeInFile);
    controller = std::make_unique<MainController>(
        MainController::Environment{frontEnd, loop, catalogue.defaults(), catalogue.actions()},
        controllerOptions());
    controller->renameEngine().setListFollowsRenames(false); // a run is the last thing that is done
}

Session::Session() : Session(false) {
    controller->globalSettings().setValue(0, settingKey::interactiveMode);
    openStore(false);
}

Session::Session(const RunOptions& options) : Session(options.storeInFile) {
    tellInterruptedRun();
    reserveStandardInput(options);
    load(options);
    takeSelection(options.selection);
    openStore(options.storeInFile);
    addPaths(options.paths);
    if (options.selection.filesFrom)
        addListedPaths(options.selection);
}

Session::~Session() {
    setToStop(nullptr);
    loop.close();
    controller.reset();
    SystemLog::setSharedInstance(nullptr);
}

void Session::setDefaults(bool storeInFile) {
    UserDefaults& defaults = catalogue.defaults();
    defaults.setObject("store",
                       static_cast<int>(storeInFile ? ItemStore::Kind::file : ItemStore::Kind::memory));
    defaults.setObject("loggerIsOn", false);
    // A rename mode given on the command line is meant.
    defaults.setObject("alreadySwitchedToLionModeOnce", true);
}

void Session::load(const RunOptions& options) {
    const Recipe recipe = options.recipe ? loadRecipe(*options.recipe) : Recipe();
    tellNotes(recipe, connectedTerminal);
    applySettings(recipe, options.settings, controller->globalSettings());
    catalogue.actions().setAutomaticSorting(controller->globalSettings().values().automaticSorting);
    if (!recipe.flatParameterList.empty()) // else the one step that there is adds nothing
        controller->compositeAction().setFlatParameterList(recipe.flatParameterList);
    refuseStepsThatCannotWork();
}

void Session::refuseStepsThatCannotWork() {
    for (const auto& step : controller->compositeAction().getActionDictionaryList()) {
        if (!step->isActive())
            continue;
        step->prepare();
        if (const std::string reason = step->failure(); !reason.empty())
            throw UsageError(fmt::format("{}: {}", step->actionName(), reason));
    }
}

void Session::openStore(bool storeInFile) {
    const std::optional<std::string>& error = controller->persistentStoreCoordinator()->openError();
    if (storeInFile && error)
        throw UsageError(fmt::format("the list cannot be kept in a file: {}", *error));
}

void Session::reserveStandardInput(const RunOptions& options) {
    const auto* const recipe = options.recipe ? std::get_if<RecipeAtPath>(&*options.recipe) : nullptr;
    const bool holdsRecipe = recipe && recipe->path == "-";
    const bool holdsPaths = options.selection.filesFrom == "-";
    if (holdsRecipe && holdsPaths)
        throw UsageError("standard input cannot be the recipe and the list of paths as well");
    if (holdsRecipe || holdsPaths)
        connectedTerminal.askElsewhere();
}

void Session::takeSelection(const SelectionOptions& options) {
    TVRNGlobalPreferencesPseudoAction& settings = controller->globalSettings();
    ItemSelection items = options.items;
    items.takesGivenHidden = true;
    if (options.kinds) {
        settings.setValue(options.kinds->files || options.kinds->links ? 1 : 0, settingKey::processFiles);
        settings.setValue(options.kinds->folders ? 1 : 0, settingKey::processFolders);
        items.takesFiles = options.kinds->files;
        items.takesLinks = options.kinds->links;
    }
    if (options.depth) {
        settings.setValue(1, settingKey::processSubfolders);
        items.depth = options.depth;
    }
    if (options.filesFrom) {
        // What lies in a folder of the list takes part although nothing is looked for there.
        items.mayNest = true;
        if (settings.values().shouldProcessSubfolders == 0)
            items.depth = 0;
        settings.setValue(1, settingKey::processSubfolders);
    }
    controller->renameEngine().setSelection(std::move(items));
}

void Session::addListedPaths(const SelectionOptions& options) {
    PathList list(*options.filesFrom, options.null, interrupts.descriptor());
    for (std::vector<std::string> paths; !(paths = list.next()).empty() && !wasInterrupted();) {
        const std::vector<std::string> resolved = absolutePaths(paths);
        if (const auto missing =
                controller->sourceCommands().addNestedPaths(resolved, [this] { return wasInterrupted(); }))
            throw UsageError(fmt::format("{}: {}", *missing, reasonOfRefusal(*missing, {})));
    }
}

bool Session::hasNoItems() {
    StoreContext& items = context();
    const std::lock_guard lock(items.mutex());
    return items.sourceItemCount() == 0;
}

void Session::addPaths(const std::vector<std::string>& given) {
    const auto isToStop = [this] { return wasInterrupted(); };
    const std::vector<std::string> refused =
        controller->sourceCommands().addPaths(absolutePaths(given, isToStop), isToStop);
    if (refused.empty())
        return;
    const std::string& first = refused.front();
    throw UsageError(
        fmt::format("{}: {}", first.empty() ? "\"\"" : first, reasonOfRefusal(first, absolutePaths(given))));
}

void Session::beInteractive() {
    if (!connectedTerminal.canAsk())
        throw UsageError("there is no terminal to ask on; without --interactive, and with the setting "
                         "interactiveMode=0, nothing is asked");
    controller->globalSettings().setValue(1, settingKey::interactiveMode);
    frontEnd.setInteractive(true);
}

void Session::beInteractiveIfSet() {
    if (controller->globalSettings().values().shouldInteract())
        beInteractive();
}

void Session::printRenames(bool endsWithNull) {
    if (endsWithNull)
        renamePrinter.endRowsWithNull();
    controller->renameEngine().setRenameObserver(&renamePrinter);
}

void Session::stopAtProblems() {
    controller->globalSettings().setValue(static_cast<int>(Settings::OnConflict::stop),
                                          settingKey::onConflict);
}

void Session::showNoProblems() { controller->renameEngine().setShowsProblems(false); }

void Session::giveNames(GivenNames names) { controller->renameEngine().giveNames(std::move(names)); }

void Session::preview() {
    const ProgressLine progress(controller->progressInfo(), loop, connectedTerminal, showsProgress);
    hasUnfinishedPreview = true;
    controller->previewControl().showPreview();
    const bool ended = loop.runUntil([this] {
        return wasInterrupted() || (frontEnd.hasPreviewFinished() && !controller->renameEngine().isBusy());
    });
    if (!ended || wasInterrupted())
        return;
    hasUnfinishedPreview = false;
    tellFailuresOfPreview();
}

void Session::tellFailuresOfPreview() {
    StoreContext& items = context();
    const std::lock_guard lock(items.mutex());
    frontEnd.tellFailures(items.processingErrors());
}

StoreContext& Session::context() { return controller->managedObjectContext(); }

Predicate Session::filter() {
    return FilterManager::currentFilterPredicate(controller->globalSettings().values().itemFilter());
}

void Session::rename() {
    const ProgressLine progress(controller->progressInfo(), loop, connectedTerminal, showsProgress);
    setToStop(&controller->renameEngine());
    if (wasInterrupted())
        return;
    bool hasStarted = false;
    controller->confirmationFlow().applyCurrentSettings(true, [&](bool started) { hasStarted = started; });
    // An interrupt that came before the start is forgotten by it.
    if (wasInterrupted())
        controller->renameEngine().requestStop();
    runHasStarted = hasStarted && !frontEnd.wasRefused();
    if (runHasStarted)
        loop.run();
    setToStop(nullptr);
}

TakeBackResult Session::takeBack(TakeBackRequest request) {
    const ProgressLine progress(controller->progressInfo(), loop, connectedTerminal, showsProgress);
    RenameEngine& engine = controller->renameEngine();
    setToStop(&engine);
    TakeBackResult result;
    bool hasEnded = false;
    engine.processTakeBack(controller->progressInfo(), std::move(request),
                           [&](EngineHost&, const TakeBackResult& found) {
                               result = found;
                               hasEnded = true;
                           });
    // An interrupt that came before the start is forgotten by it.
    if (wasInterrupted())
        engine.requestStop();
    loop.runUntil([&] { return hasEnded && !engine.isBusy(); });
    setToStop(nullptr);
    takenBack = result.changed;
    frontEnd.tellFailures(result.errors);
    return result;
}

RunHistory Session::history() const { return RunHistory(controller->renameEngine().historyPlace().folder); }

void Session::keepHistory(bool keep) {
    controller->globalSettings().setValue(keep ? 1 : 0, settingKey::keepHistory);
}

void Session::requireHistory() {
    keepHistory(true);
    frontEnd.requireRecord();
}

void Session::tellInterruptedRun() {
    if (!connectedTerminal.errorIsTerminal())
        return;
    const auto run = history().interruptedRun();
    if (!run)
        return;
    // An undo that was cut off is finished by going on with it.
    const bool isUndo = run->heading.what == RunKind::undo;
    connectedTerminal.complain(fmt::format(
        "tvrn: the run {0} was interrupted: \"tvrn undo {0}\" {1}, \"tvrn redo {0}\" {2}", run->name,
        isUndo ? "finishes it" : "takes it back", isUndo ? "takes it back" : "finishes it"));
}

void Session::setToStop(RenameEngine* engine) {
    const std::lock_guard lock(stopping);
    toStop = engine;
}

std::int32_t Session::renamedCount() {
    if (takenBack > 0)
        return takenBack;
    StoreContext& items = context();
    const std::lock_guard lock(items.mutex());
    return std::max(items.engineControl().numberOfActuallyRenamedFiles, 0);
}

/// On the thread that waits for signals.
void Session::wasToldToStop() {
    {
        const std::lock_guard lock(stopping);
        if (toStop)
            toStop->requestStop();
    }
    loop.post([] {}); // whoever waits looks again
}

/// Printing the rows may have paged some out, which the disk refuses. After a run nothing new is to begin.
void Session::tellWhatIsPosted() {
    if (runHasStarted || wasInterrupted())
        return;
    const auto isTold = std::make_shared<bool>(false);
    loop.post([isTold] { *isTold = true; });
    loop.runUntil([&] { return *isTold; });
}

ExitStatus Session::status() {
    if (wasInterrupted() || frontEnd.wasStopped())
        return ExitStatus::stopped;
    if (frontEnd.wasRefused())
        return renamedCount() == 0 ? ExitStatus::badUsage : ExitStatus::itemsFailed;
    return hasFailed || frontEnd.hasFailures() ? ExitStatus::itemsFailed : ExitStatus::allWell;
}

ExitStatus Session::finish() {
    tellWhatIsPosted();
    const ExitStatus result = connectedTerminal.finish(status());
    if (hasUnfinishedPreview && wasInterrupted())
        std::_Exit(static_cast<int>(result));
    return result;
}

} // namespace tavrin
