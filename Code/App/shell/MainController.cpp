#include "shell/MainController.h"

#include "actions/ActionList.h"
#include "engine/asking/ErrorReportManager.h"
#include "platform/desktop/UserFolders.h"
#include "platform/files/FileStatus.h"
#include "platform/files/SandboxHelper.h"
#include "platform/propertylists/UserDefaults.h"
#include "shell/asking/FrontEnd.h"
#include "support/application/DebugLog.h"
#include "support/application/MacOSXVersion.h"

#include <filesystem>
#include <stdexcept>

namespace tavrin {

namespace {

MainController* registered = nullptr;

constexpr int version = 80001;

/// The defaults must be there before the log's switch reads its own.
UserDefaults& withRegisteredDefaults(UserDefaults& defaults) {
    defaults.registerDefaults({{"version", 0},
                               {"SUScheduledCheckInterval", 86400},
                               {"store", 0},
                               {"loggerIsOn", true},
                               {"showManualSortingSortBasedActionAlert", true},
                               {"showManualSortingAlert", true},
                               {"showTickBoxes", true},
                               {"tagLibraryTabIndex", 0},
                               {"showTagNotPresentDialog", true},
                               {"actionListSeparatorPosition", 150}});
    return defaults;
}

} // namespace

MainController::Options MainController::Options::standard() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    Options standard;
    standard.store.dataFolder = SandboxHelper::getApplicationSupportFolderPath();
    standard.localPresetsFolder = standard.store.dataFolder + "/Presets";
    standard.globalPresetsFolder = SandboxHelper::globalPresetsFolder();
    standard.location = program.string();
    standard.history = {UserFolders::state() + "/tavrin/runs", "window",
                        [] { return HistoryLimits::of(UserDefaults::sharedInstance()); }};
    return standard;
}

MainController::MainController(Environment newEnvironment, Options newOptions)
    : environment(newEnvironment), options(std::move(newOptions)),
      debugManager(withRegisteredDefaults(environment.defaults)),
      folderAccess(environment.defaults, environment.runLoop,
                   [this](const std::string& path) { presentBookmarkingRequestDialogForPath(path); }),
      progress(environment.runLoop),
      store(
          environment.defaults, options.store, [this](const std::string& message) { postNotice(message); },
          [this] { return engine.busyMigratingStore(); }),
      sourceItems([this]() -> StoreContext& { return store.managedObjectContext(); }),
      presets(options.localPresetsFolder, options.globalPresetsFolder,
              [this]() -> CompositeRenameAction& { return composite; }),
      services{environment.frontEnd,
               environment.runLoop,
               environment.defaults,
               environment.actionList,
               settings,
               composite,
               progress,
               engine,
               sourceItems,
               mode},
      listCommands(services), recipes(services, listCommands, store), preview(services, store, listCommands),
      sources(services, store, preview), hands(services, preview),
      dragging(services, {store, preview, sources}), notices(services),
      missingTagNotice(
          environment.runLoop,
          [this](std::function<void()> gone) { notices.showTagNotPresentDialog(std::move(gone)); }),
      tagLibrary(&missingTagNotice), droplets(services, {listCommands, notices}, options.location),
      confirmation(services,
                   {store, listCommands, preview, notices, droplets,
                    [this](const std::string& run) { undos.undoRun(run); }},
                   [this] { terminateNow(); }),
      undos(services, {preview, confirmation}),
      migration(services, presets,
                {options.store.dataFolder, options.location, [this] { updatePresetsMenu(); }}),
      updates(services, {.mayInterrupt = [this] { return validateUserInterfaceItem() && !engine.isBusy(); },
                         .now = secondsSince2001}),
      startSequence(services,
                    {presets, listCommands, preview, sources, notices, confirmation, droplets, mode, *this},
                    {options.location, options.usesUserFolders, [this] { terminate(); }}),
      engine(*this) {
    registered = this;
    TagLibraryHelper::setSharedInstance(&tagLibrary);
    debugManager.awakeFromNib();
    logStart();
    engine.setHistoryPlace(options.history);
    environment.actionList.setRunLoop(&environment.runLoop);
    environment.actionList.setObserver(this);
    preview.setFollowsChanges(options.followsChanges);
    if (options.followsChanges)
        engine.expectManyPreviews();
    else
        sourceItems.keepLooks();
}

MainController::~MainController() {
    missingTagNotice.end(); // a worker that waits for the dialog must not keep the engine from ending
    environment.actionList.setObserver(nullptr);
    if (registered == this)
        registered = nullptr;
}

MainController& MainController::sharedInstance() {
    if (!registered)
        throw std::logic_error("no controller has been made");
    return *registered;
}

void MainController::logStart() {
    debugLog("===========================================");
    debugLog("{} is starting", "Tavrin 9");
    debugLog("Lion: {:d}", MacOSXVersion::isLionOrLater());
    debugLog("Snow Leopard: {:d}", MacOSXVersion::isSnowLeopardOrLater());
    debugLog(" ");
}

// ---- life

void MainController::applicationDidFinishLaunching() {
    startSequence.applicationDidFinishLaunching();
    if (mode == OperationMode::normal && options.usesUserFolders) {
        updates.start();
        undos.tellInterruptedRun();
    }
}

bool MainController::applicationShouldTerminate() {
    debugLog("Terminating.");
    debugLog("++++++++++++++++++++++++++++++");
    // Before the start is over there is nothing of the user's to save, and what is stored would be lost.
    if (mode == OperationMode::normal && hasFinishedInitializing())
        saveUserDefaults();
    return true;
}

void MainController::terminateNow() {
    if (std::exchange(isTerminating, true))
        return;
    if (applicationShouldTerminate())
        environment.frontEnd.terminate();
}

void MainController::cancel() {
    if (listCommands.validateActionList())
        whenNamesMayGo([this] { terminate(); });
}

void MainController::windowWillClose() {
    whenNamesMayGo([this] { confirmation.closeWindow(); });
}

/// Names by hand that no rename has given are nowhere else. Who closes a second time means it.
void MainController::whenNamesMayGo(std::function<void()> quit) {
    const bool isRunning = !validateUserInterfaceItem();
    if (hands.pinned() == 0 || isRunning || std::exchange(isAskingAboutNames, true)) {
        quit();
        return;
    }
    const Alert question{.kind = AlertKind::namesByHandLost,
                         .title =
                             hands.pinned() == 1
                                 ? "1 name by hand has not been given yet."
                                 : fmt::format("{} names by hand have not been given yet.", hands.pinned()),
                         .text = "Names by hand are not kept when Tavrin is closed.",
                         .buttons = {"Quit", "Keep Open"}};
    environment.frontEnd.showAlert(question, [this, quit = std::move(quit)](AlertAnswer answer) {
        isAskingAboutNames = false;
        if (answer.button == 0)
            quit();
    });
}

void MainController::saveUserDefaults() {
    if (!startSequence.isStoredChainToBeKept())
        composite.saveToPreferences();
    environment.defaults.setObject("version", version);
    environment.actionList.saveActionParametersToPreferences(settings);
}

void MainController::createProfile() { ErrorReportManager(*this).writeErrorReport(); }

void MainController::presentError(const std::string& message) {
    onMainThread([this, message] { environment.frontEnd.presentError(message); });
}

void MainController::presentNotice(const std::string& text) { environment.frontEnd.presentNotice(text); }

void MainController::postNotice(const std::string& message) {
    postToMainThread([this, message] { presentNotice(message); });
}

void MainController::revealReport(const std::string& path) { environment.frontEnd.revealPath(path); }

void MainController::showHelpAnchor(std::string_view anchor) { environment.frontEnd.showHelp(anchor); }

// ---- modes and states

bool MainController::isRenameButtonEnabled() {
    return isInDropletEditMode() || (preview.isWhole() && !preview.isPreviewEmpty());
}

bool MainController::validateUserInterfaceItem() const { return !confirmation.currentlyShowingProgressTab(); }

// ---- commands

bool MainController::applicationOpenFiles(const std::vector<std::string>& paths) {
    return addFilePaths(paths, true);
}

bool MainController::addFilePaths(const std::vector<std::string>& paths, bool interactive) {
    return sources.addFilePaths(paths, interactive);
}

void MainController::lookAgain() {
    if (!engine.isBusy() && !preview.isPreviewPending() && !sourceItems.isEmpty())
        engine.processLook();
}

void MainController::finishWork() {
    sources.finishWork();
    hands.finish();
}

void MainController::ok() {
    finishWork();
    confirmation.ok();
}

void MainController::applyAndQuit() {
    finishWork();
    confirmation.applyAndQuit();
}

void MainController::applyButDontQuit() {
    finishWork();
    confirmation.applyButDontQuit();
}

void MainController::applyPreset(std::size_t index) {
    if (const PresetOutcome outcome = presets.applyPresetAtIndex(index); !outcome)
        presentError("The preset can't be used. " + *outcome.error);
    environment.frontEnd.actionListChanged();
    if (composite.count() >= 2 && !settings.values().shouldShowMultistepDrawer)
        listCommands.showMultistepDrawer();
}

void MainController::updatePresetsMenu() { environment.frontEnd.fillPresetMenu(presets.getPresetTitles()); }

// ---- threads

void MainController::updatePreview() {
    onMainThread([this] { preview.updatePreview(); });
}

void MainController::onMainThread(std::function<void()> action) {
    if (environment.runLoop.isCurrent()) {
        action();
        return;
    }
    postToMainThread(std::move(action));
}

void MainController::postToMainThread(std::function<void()> action) {
    environment.runLoop.post([alive = std::weak_ptr(lifetime), action = std::move(action)] {
        if (alive.lock())
            action();
    });
}

void MainController::observeValueForKeyPath(const std::string& keyPath, BaseAction& object,
                                            const std::optional<PropertyValue>& oldValue,
                                            const std::optional<PropertyValue>& newValue) {
    preview.observeValueForKeyPath(keyPath, &object, oldValue, newValue);
}

} // namespace tavrin
