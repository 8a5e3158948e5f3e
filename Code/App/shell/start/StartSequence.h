#pragma once

#include "actions/ActionObserver.h"
#include "documents/FirstLaunchManager.h"
#include "shell/commands/ShellServices.h"
#include "support/values/PropertyValue.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

class ActionListCommands;
class ConfirmationFlow;
class DropletCommands;
class NoticeDialogs;
class PresetsManager;
class PreviewControl;
class SourceCommands;

/// Brings the application up in its fixed order, once. Main thread.
class StartSequence {
  public:
    struct Units {
        PresetsManager& presets;
        ActionListCommands& commands;
        PreviewControl& preview;
        SourceCommands& sources;
        NoticeDialogs& notices;
        ConfirmationFlow& confirmation;
        DropletCommands& droplets;
        std::atomic<OperationMode>& mode;
        ActionObserver& observer;
    };
    struct Options {
        std::string location;        ///< of the program, in bytes
        bool usesUserFolders = true; ///< make and read the folders of presets
        std::function<void()> terminate;
    };

    StartSequence(ShellServices& shared, Units otherUnits, Options options);
    ~StartSequence();

    void applicationDidFinishLaunching();
    [[nodiscard]] bool hasFinishedInitializing() const { return isFinished; }
    /// Whether the stored chain could not be used and nothing has been made in its place: a version that
    /// knows its actions is to find it as it was.
    [[nodiscard]] bool isStoredChainToBeKept() const;

  private:
    void firstLaunch();
    void leaveStoredSettingsAlone();
    void tellOfOtherSettings(const FirstLaunchManager::OtherSettings& other);
    void prepareColumns();
    void loadSettings();
    void loadPresets();
    void readSettingsFromDroplet();
    void loadChain();
    void connectObservers();
    /// False when the application is to end instead.
    bool enterDropletEditMode();
    void showInterface();
    void startDropletRun();
    /// Also ends a droplet that has nothing to rename: no window is left from which to go on.
    void renameDroppedFiles();

    ShellServices& services;
    Units units;
    Options options;
    bool isFirstLaunch = false;
    bool isFinished = false;
    bool isUpgradeDue = false;
    std::string dropletSettingsPath;
    std::optional<PropertyDictionary> chainInPlaceOfStored; ///< what came up where the stored one was no good
    std::vector<std::shared_ptr<void>> observations;
    std::shared_ptr<char> lifetime; ///< for posted actions that come late
};

} // namespace tavrin
