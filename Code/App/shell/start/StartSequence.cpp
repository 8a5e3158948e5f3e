#include "shell/start/StartSequence.h"

#include "actions/CompositeRenameAction.h"
#include "documents/DropletHandOver.h"
#include "documents/FirstLaunchManager.h"
#include "documents/PresetsManager.h"
#include "documents/RecipeFile.h"
#include "engine/pipeline/RenameEngine.h"
#include "platform/processes/RunLoop.h"
#include "platform/propertylists/UserDefaults.h"
#include "shell/asking/ConfirmationFlow.h"
#include "shell/asking/FrontEnd.h"
#include "shell/asking/NoticeDialogs.h"
#include "shell/commands/ActionListCommands.h"
#include "shell/commands/DropletCommands.h"
#include "shell/commands/SourceCommands.h"
#include "shell/preview/PreviewControl.h"
#include "store/sources/SourceItemManager.h"
#include "support/application/MacOSXVersion.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

/// The stored chain checked like one from outside gives a plainer reason than the failure.
std::string whyUnusable(const UserDefaults& defaults, const std::exception& failure) {
    const auto stored = defaults.objectForKey("composite action");
    if (!stored)
        return failure.what();
    const auto checked = RecipeFile::checkedFlatParameterList(*stored, "");
    const auto* error = std::get_if<RecipeError>(&checked);
    return error ? error->message : failure.what();
}

} // namespace

StartSequence::StartSequence(ShellServices& shared, Units otherUnits, Options startOptions)
    : services(shared), units(otherUnits), options(std::move(startOptions)),
      lifetime(std::make_shared<char>()) {}

StartSequence::~StartSequence() = default;

void StartSequence::applicationDidFinishLaunching() {
    FrontEnd& frontEnd = services.frontEnd;
    frontEnd.selectMainTab(MainTab::interface);
    firstLaunch();
    prepareColumns();
    loadSettings();
    services.composite.setOwner(&units.observer);
    loadPresets();
    readSettingsFromDroplet();
    if (isUpgradeDue) {
        units.droplets.upgrade(dropletSettingsPath, options.terminate);
        return;
    }
    loadChain();
    frontEnd.actionListChanged();
    connectObservers();
    if (services.mode == OperationMode::dropletEdit && !enterDropletEditMode())
        return;
    units.commands.restoreMultistepDrawer();
    isFinished = true;
    if (isFirstLaunch)
        frontEnd.centreWindow();
    if (services.mode == OperationMode::dropletRun)
        startDropletRun();
    else
        showInterface();
    units.preview.checkUpOnLongProcessingTimer();
}

void StartSequence::firstLaunch() {
    FirstLaunchManager manager(services.defaults, options.location);
    if (DropletHandOver::isPresent(services.defaults)) {
        if (manager.callOnlyOnceIsFirstLaunch())
            leaveStoredSettingsAlone();
        return;
    }
    manager.doIt();
    isFirstLaunch = manager.isFirstLaunch();
    if (const auto& other = manager.otherSettings())
        tellOfOtherSettings(*other);
}

/// A droplet brings its own settings; what another version has stored is neither of use to it nor its to
/// change.
void StartSequence::leaveStoredSettingsAlone() {
    auto record = services.defaults.objectForKey(DropletHandOver::recordKey);
    services.defaults.leaveFileAlone();
    services.defaults.removePersistentDomain();
    services.defaults.setProcessObject(DropletHandOver::recordKey, std::move(*record));
}

void StartSequence::tellOfOtherSettings(const FirstLaunchManager::OtherSettings& other) {
    if (other.error)
        services.frontEnd.presentError(fmt::format(
            "The settings of another version could not be copied. They stay as they are, so what is set "
            "in this window is not kept. The reason: {}",
            *other.error));
    else if (other.isNewer)
        services.frontEnd.showAlert(
            {.kind = AlertKind::settingsSetAside,
             .style = AlertStyle::informational,
             .title = "The settings of a newer version were found.",
             .text = fmt::format("They have been copied to \"{}\". This version begins with "
                                 "settings of its own.",
                                 other.copy),
             .buttons = {"OK"}},
            [](AlertAnswer) {});
}

void StartSequence::prepareColumns() {
    using enum PreviewColumn;
    for (const PreviewColumn column : {regex1, regex2, regex3, regex4, regex5, regex6})
        services.frontEnd.setColumnWidth(column, 20, 200, 40);
    for (const PreviewColumn column : {currentName, newName, path})
        services.frontEnd.setColumnWidth(column, 100, 1000, 200);
}

void StartSequence::loadSettings() {
    services.actionList.loadActionParametersFromPreferences(services.settings);
    services.actionList.setAutomaticSorting(services.settings.values().automaticSorting);
}

void StartSequence::loadPresets() {
    if (!options.usesUserFolders)
        return;
    units.presets.startup();
    services.frontEnd.fillPresetMenu(units.presets.getPresetTitles());
}

/// A record that is no good is told and left alone: nothing is renamed by a recipe that its droplet did not
/// mean.
void StartSequence::readSettingsFromDroplet() {
    if (!DropletHandOver::isPresent(services.defaults))
        return;
    (void)services.defaults.synchronize();
    const auto record = DropletHandOver::read(services.defaults);
    DropletHandOver::clear(services.defaults);
    if (const auto* error = std::get_if<RecipeError>(&record)) {
        services.frontEnd.presentError("The droplet can't be used. " + error->message);
        return;
    }
    const auto& handOver = std::get<DropletHandOver>(record);
    services.composite.setFlatParameterList(handOver.compositeAction);
    if (handOver.globalSettings)
        services.settings.setParameterList(*handOver.globalSettings);
    dropletSettingsPath = handOver.settingsPath;
    units.confirmation.setDropletSettingsPath(dropletSettingsPath);
    if (handOver.fileList.empty()) {
        units.mode = OperationMode::dropletEdit;
        isUpgradeDue = MacOSXVersion::isMountainLionOrLater() && !handOver.hasVersion;
        return;
    }
    units.mode = OperationMode::dropletRun;
    services.engine.setHistoryPlace({services.engine.historyPlace().folder, "droplet"});
    units.sources.addFilePaths(handOver.fileList, !services.isSilentDroplet());
    units.sources.finishWork();
}

void StartSequence::loadChain() {
    if (services.mode != OperationMode::normal)
        return;
    try {
        services.composite.loadFromPreferences();
        if (!services.defaults.objectForKey("composite action"))
            units.commands.fitWidth();
    } catch (const std::exception& failure) {
        services.composite.setFlatParameterList(std::nullopt);
        chainInPlaceOfStored = services.composite.getFlatParameterList();
        services.frontEnd.presentError(fmt::format("The list of actions that was stored can't be used. {}",
                                                   whyUnusable(services.defaults, failure)));
    }
}

bool StartSequence::isStoredChainToBeKept() const {
    return chainInPlaceOfStored && *chainInPlaceOfStored == services.composite.getFlatParameterList();
}

void StartSequence::connectObservers() {
    ActionObserver& observer = units.observer;
    services.actionList.setAutomaticSorting(services.settings.values().automaticSorting);
    observations.push_back(services.settings.registerObserverForAllValues(observer));
    // Also settings that have no value before they are first used.
    for (const auto& [key, whenNew] : Settings::knownSettings())
        if (find(services.settings.parameterList(), key) == nullptr)
            observations.push_back(services.settings.registerObserver(observer, key));
    observations.push_back(services.composite.registerObserverForAllValues(observer));
    for (const char* key : {"actionList", "transientActionIndex"})
        observations.push_back(services.composite.registerObserver(observer, key));
    const auto showInvisiblesChanged = [this] {
        units.preview.observeValueForKeyPath("showInvisibles", nullptr, std::nullopt, std::nullopt);
    };
    observations.push_back(services.defaults.observe(
        "showInvisibles", [&loop = services.runLoop, alive = std::weak_ptr(lifetime), showInvisiblesChanged] {
            loop.post([alive, showInvisiblesChanged] {
                if (alive.lock())
                    showInvisiblesChanged();
            });
        }));
}

bool StartSequence::enterDropletEditMode() {
    if (services.settings.values().shouldPreventDropletEditing) {
        services.frontEnd.showAlert(
            {.kind = AlertKind::dropletLocked,
             .style = AlertStyle::critical,
             .title = "This droplet has been locked by its author.",
             .text = "This droplet cannot be edited because its author has locked it.\n\nPlease drag & drop "
                     "the files you want to rename onto the droplet icon to automatically perform the "
                     "rename.",
             .buttons = {"Quit"}},
            [terminate = options.terminate](AlertAnswer) { terminate(); });
        return false;
    }
    units.notices.showDropletEditModeInfo([terminate = options.terminate](int choice) {
        if (choice == NoticeAnswer::cancel)
            terminate();
    });
    services.frontEnd.enterDropletEditMode();
    return true;
}

void StartSequence::showInterface() {
    units.commands.switchAction();
    services.frontEnd.showWindow();
    // All observers fire, and that brings the first preview about.
    services.settings.setParameterList(services.settings.parameterList());
}

/// The rename comes when the preview is there: whichever thread were first, a rename without a preview would
/// find nothing to rename.
void StartSequence::startDropletRun() {
    services.frontEnd.hideWindow();
    units.preview.afterNextPreview([this] { renameDroppedFiles(); });
    services.engine.processPreviewPipeline(services.progress);
}

void StartSequence::renameDroppedFiles() {
    const auto areSettingsConsistent = [this] {
        return services.settings.values().shouldProcessFiles ||
               services.settings.values().shouldProcessFolders;
    };
    const bool wereConsistent = areSettingsConsistent();
    const auto& steps = services.composite.getActionDictionaryList();
    const bool hasActiveStep = std::ranges::any_of(steps, [](const auto& step) { return step->isActive(); });
    // Nobody sits before a silent droplet who could answer why there is nothing to do.
    if (services.isSilentDroplet() && (!wereConsistent || !hasActiveStep || services.sourceItems.isEmpty())) {
        options.terminate();
        return;
    }
    units.confirmation.applyCurrentSettings(true, [this, wereConsistent, areSettingsConsistent](bool isDone) {
        if (isDone && wereConsistent)
            return; // the run ends the application
        if (!isDone && !wereConsistent && areSettingsConsistent())
            startDropletRun(); // the user has mended them
        else
            options.terminate();
    });
}

} // namespace tavrin
