#pragma once

#include "actions/ActionObserver.h"
#include "actions/CompositeRenameAction.h"
#include "documents/PresetsManager.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/pipeline/RenameEngine.h"
#include "platform/desktop/DebugManager.h"
#include "platform/files/FileSystemAccessManager.h"
#include "shell/asking/ConfirmationFlow.h"
#include "shell/asking/FrontEnd.h"
#include "shell/asking/NoticeDialogs.h"
#include "shell/commands/ActionListCommands.h"
#include "shell/commands/DropletCommands.h"
#include "shell/commands/HandEdits.h"
#include "shell/commands/RecipeCommands.h"
#include "shell/commands/ShellServices.h"
#include "shell/commands/SourceCommands.h"
#include "shell/commands/UndoCommands.h"
#include "shell/preview/DNDArrayController.h"
#include "shell/preview/PreviewControl.h"
#include "shell/start/MigrationCommands.h"
#include "shell/start/StartSequence.h"
#include "shell/start/StoreOwner.h"
#include "shell/start/UpdateCheck.h"
#include "store/sources/SourceItemManager.h"
#include "tags/TagLibraryHelper.h"

#include <atomic>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavrin {

/// The one object that holds the application together: owns its parts, starts and ends it, and is what the
/// engine and the front ends reach everything by. The work is done by the units of this room.
///
/// Main thread, but for what EngineHost allows to any thread. Before it is destroyed while a run may be under
/// way, the run loop must have been closed.
class MainController : public EngineHost, public ActionObserver {
  public:
    /// What the application brings along; all of it outlives the controller.
    struct Environment {
        FrontEnd& frontEnd;
        RunLoop& runLoop;
        UserDefaults& defaults;
        ActionList& actionList;
    };
    struct Options {
        StoreOwner::Options store;
        std::string localPresetsFolder;
        std::string globalPresetsFolder;
        std::string location; ///< of the program, in bytes
        /// Where runs are recorded, nowhere without a folder, and as whose.
        HistoryPlace history = {};
        /// Off: nothing in the user's folders is made or read at the start.
        bool usesUserFolders = true;
        /// Off: no change asks for a preview by itself; what is added is read soon.
        bool followsChanges = true;
        /// The user's folders, and the place of the running program.
        static Options standard();
    };

    MainController(Environment newEnvironment, Options newOptions);
    ~MainController() override;

    /// The controller alive.
    static MainController& sharedInstance();

    // --- Life ---
    void applicationDidFinishLaunching();
    [[nodiscard]] bool hasFinishedInitializing() const { return startSequence.hasFinishedInitializing(); }
    /// Saves what is to be saved; the application may end now.
    bool applicationShouldTerminate();
    /// Stops a run that is under way first, and waits until its report is read.
    void windowWillClose();
    void cancel();
    void saveUserDefaults();
    void createProfile();
    /// Shows a failure of the application's own. Any thread.
    void presentError(const std::string& message);
    /// Tells what the user should know, later and on the main thread. Any thread, under any lock.
    void postNotice(const std::string& message);

    // --- Modes and states ---
    [[nodiscard]] OperationMode operationMode() const { return mode; }
    [[nodiscard]] bool isInDropletEditMode() const { return mode == OperationMode::dropletEdit; }
    [[nodiscard]] bool isEditingDroplet() const { return isInDropletEditMode(); }
    [[nodiscard]] bool isRenameButtonEnabled();
    /// Whether commands are on: off while a run shows its progress.
    [[nodiscard]] bool validateUserInterfaceItem() const;

    // --- Commands ---
    bool applicationOpenFiles(const std::vector<std::string>& paths);
    bool addFilePaths(const std::vector<std::string>& paths, bool interactive);
    void showFileDialog() { sources.showFileDialog(); }
    void removeFile(const std::vector<RowId>& selection) { sources.removeFile(selection); }
    void clearPreview() { clearList(); }
    /// Reads everything on the list anew from the disk.
    void rereadList() {
        engine.rereadAtNextPreview();
        preview.initiateDelayedPreviewUpdate();
    }
    /// Looks again which new names will be refused, since others may have changed something meanwhile. Reads
    /// nothing anew; where nothing has changed it costs a call for each folder, on a worker.
    void lookAgain();
    void ok();
    void applyAndQuit();
    void applyButDontQuit();
    void createFileList() { confirmation.createFileList(); }
    void createDroplet() { droplets.createDroplet(); }
    /// Applies a preset of the menu. A preset that is no good is told to the user and changes nothing.
    void applyPreset(std::size_t index);
    void updatePresetsMenu();
    void showMultistepDrawer() { listCommands.showMultistepDrawer(); }
    void showHelpAnchor(std::string_view anchor);

    void migratePresets() { migration.migratePresets(); }
    void migratePresetsFromFolder() { migration.migratePresetsFromFolder(); }
    void migrateDroplet() { migration.migrateDroplet(); }
    void checkForUpdates() { updates.checkForUpdatesNow(); }
    /// Would ask the user of a sandbox for access; there is none.
    void presentBookmarkingRequestDialogForPath(const std::string&) {}

    // --- Parts ---
    [[nodiscard]] RenameEngine& renameEngine() { return engine; }
    [[nodiscard]] ActionListCommands& actionListCommands() { return listCommands; }
    [[nodiscard]] RecipeCommands& recipeCommands() { return recipes; }
    [[nodiscard]] PreviewControl& previewControl() { return preview; }
    [[nodiscard]] PreviewList& nodeController() { return preview.nodeController(); }
    [[nodiscard]] SourceCommands& sourceCommands() { return sources; }
    [[nodiscard]] HandEdits& handEdits() { return hands; }
    [[nodiscard]] DNDArrayController& dndArrayController() { return dragging; }
    [[nodiscard]] ConfirmationFlow& confirmationFlow() { return confirmation; }
    [[nodiscard]] PresetsManager& presetsManager() { return presets; }
    [[nodiscard]] StoreOwner& storeOwner() { return store; }
    [[nodiscard]] UpdateCheck& updateCheck() { return updates; }
    [[nodiscard]] UndoCommands& undoCommands() { return undos; }

    // --- EngineHost ---
    ItemStore* persistentStoreCoordinator() override { return store.persistentStoreCoordinator(); }
    StoreContext& managedObjectContext() override { return store.managedObjectContext(); }
    TVRNGlobalPreferencesPseudoAction& globalSettings() override { return settings; }
    CompositeRenameAction& compositeAction() override { return composite; }
    ProgressInfo& progressInfo() override { return progress; }
    RunLoop& runLoop() override { return environment.runLoop; }
    bool isSilentDroplet() override { return services.isSilentDroplet(); }
    void ask(const RunQuestion& question, const ConfirmationAnswerPointer& answer) override {
        confirmation.ask(question, answer);
    }
    void updatePreview() override;
    void startProgressWindow() override { confirmation.startProgressWindow(); }
    void stopProgressWindow() override { confirmation.stopProgressWindow(); }
    std::optional<FetchRequest> shownList() override { return preview.shownList(); }
    void setListFolders(const RowFolders& folders) override { preview.setListFolders(folders); }
    void showFirstRows() override { preview.showFirstRows(); }
    void refreshPreview() override { preview.refreshPreview(); }
    void showStats() override { preview.showStats(); }
    void showCompletionDialog() override { confirmation.showCompletionDialog(); }
    void showFileListSavingCompletionDialog(int format) override {
        confirmation.showFileListSavingCompletionDialog(format);
    }
    void showFileListNotSaved(const std::string& path, const std::string& reason) override {
        confirmation.showFileListNotSaved(path, reason);
    }
    void reloadPreview() override { sources.reloadPreview(); }
    void tellGone(std::size_t count) override { environment.frontEnd.itemsWereGone(count); }
    void changePins(std::vector<NamePins::Change> changes) override { hands.change(std::move(changes)); }
    void clearList() override {
        hands.drop();
        sources.clearList();
    }
    void terminate() override { confirmation.terminateWhenReportIsClosed(); }
    void revealReport(const std::string& path) override;
    void presentNotice(const std::string& text) override;

    // --- ActionObserver ---
    void observeValueForKeyPath(const std::string& keyPath, BaseAction& object,
                                const std::optional<PropertyValue>& oldValue,
                                const std::optional<PropertyValue>& newValue) override;

  private:
    void logStart();
    void terminateNow();
    /// Does at once what is still being done in slices.
    void finishWork();
    void whenNamesMayGo(std::function<void()> quit);
    /// Runs an action on the main thread while the controller is alive: at once when already there.
    void onMainThread(std::function<void()> action);
    void postToMainThread(std::function<void()> action);

    Environment environment;
    Options options;
    std::shared_ptr<char> lifetime = std::make_shared<char>();
    std::atomic<OperationMode> mode{OperationMode::normal};
    bool isTerminating = false;
    bool isAskingAboutNames = false;
    DebugManager debugManager;
    FileSystemAccessManager folderAccess;

    // Order matters: the engine ends its threads before anything that they use goes.
    TVRNGlobalPreferencesPseudoAction settings;
    CompositeRenameAction composite;
    ProgressInfo progress;
    StoreOwner store;
    SourceItemManager sourceItems;
    PresetsManager presets;
    ShellServices services;
    ActionListCommands listCommands;
    RecipeCommands recipes;
    PreviewControl preview;
    SourceCommands sources;
    HandEdits hands;
    DNDArrayController dragging;
    NoticeDialogs notices;
    MissingTagNotice missingTagNotice;
    TagLibraryHelper tagLibrary;
    DropletCommands droplets;
    ConfirmationFlow confirmation;
    UndoCommands undos;
    MigrationCommands migration;
    UpdateCheck updates;
    StartSequence startSequence;
    RenameEngine engine;
};

} // namespace tavrin
