#pragma once

#include "engine/asking/RunQuestion.h"
#include "shell/asking/NoticeDialogs.h"
#include "shell/commands/ShellServices.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavrin {

struct TakeBackResult;

class ActionListCommands;
class DropletCommands;
class PreviewControl;
class StoreOwner;

/// What stands between the click on the rename button and the end of the run: the checks before it, the
/// questions during it, the report after it. Main thread.
class ConfirmationFlow {
  public:
    struct Units {
        StoreOwner& store;
        ActionListCommands& commands;
        PreviewControl& preview;
        NoticeDialogs& notices;
        DropletCommands& droplets;
        /// Has the run of this name undone.
        std::function<void(const std::string& run)> undoRun;
    };
    /// `terminate` ends the application at once.
    ConfirmationFlow(ShellServices& shared, Units otherUnits, std::function<void()> terminate);
    ~ConfirmationFlow();
    ConfirmationFlow(const ConfirmationFlow&) = delete;
    ConfirmationFlow& operator=(const ConfirmationFlow&) = delete;

    void setDropletSettingsPath(std::string path) { dropletSettingsPath = std::move(path); }

    // --- Starting a run ---
    void ok();
    void applyAndQuit() { executeRenameAndQuit(true); }
    void applyButDontQuit() { executeRenameAndQuit(false); }
    void executeRenameAndQuit(bool quit);
    /// Checks, asks where needed, and starts the run. `then` gets false when there is something to mend
    /// first; true also when the user has chosen that nothing is to happen.
    void applyCurrentSettings(
        bool quit, std::function<void(bool)> then = [](bool) {});
    void createFileList();

    // --- The progress view ---
    void startProgressWindow();
    void stopProgressWindow();
    void interruptProgressWindow();
    [[nodiscard]] bool currentlyShowingProgressTab() const { return isShowingProgress; }

    /// Puts a question of the run to the user, or answers it where nobody is to be asked.
    void ask(const RunQuestion& question, const ConfirmationAnswerPointer& answer);

    // --- The end of a run ---
    void showCompletionDialog();
    /// The same for an undo or a redo.
    void tellEndOfTakeBack(const TakeBackResult& result);
    /// What has begun like a run was none. False when that ends the application, since the user has closed
    /// the window meanwhile.
    [[nodiscard]] bool endWithoutReport();
    void showFileListSavingCompletionDialog(int format);
    void showFileListNotSaved(const std::string& path, const std::string& reason);
    /// Ends the application, after the report of a run if one is open.
    void terminateWhenReportIsClosed();
    /// The user closes the window: a run that is under way stops after the item in hand and is reported,
    /// whatever the settings say; the application ends when that is read.
    void closeWindow();
    /// For an end that can't wait for the user: stops a run in the same way; `tell` gets the report as one
    /// line when it has ended, and the next start tells of it. False, and nothing happens, where no run is
    /// under way.
    bool stopRun(std::function<void(const std::string& report)> tell);

  private:
    struct RunResult;
    [[nodiscard]] RunResult resultOfRun();
    void tellEnd(const RunResult& result);
    void answerReport(ReportAnswer answer, const std::string& run);
    [[nodiscard]] RunReport reportOf(const RunResult& result) const;
    void startRun(bool quit);
    void settingsAreInconsistent(int choice, const std::function<void(bool)>& then);
    void setCurrentlyShowingProgressTab(bool isShowing);
    [[nodiscard]] std::optional<ConfirmationChoice> answerWithoutUser(const RunQuestion& question) const;
    /// Something that tells, once, that a report is closed: when called or when dropped.
    std::function<void()> reportIsOpen();

    ShellServices& services;
    Units units;
    std::function<void()> terminateNow;
    std::string dropletSettingsPath;
    bool isShowingProgress = false;
    bool isReportDue = false; ///< a run is under way, or has ended and is not reported yet
    bool isWindowClosed = false;
    bool quitsAfterRun = false; ///< the run under way was asked to end the application
    std::string undoBeforeQuit; ///< the run that is to be undone before the application ends
    std::function<void(const std::string&)> tellInstead; ///< takes the place of the report
    int openReports = 0;
    bool isTerminationDue = false;
    std::shared_ptr<ConfirmationFlow*> self; ///< emptied at the end, for handlers that outlive this
};

} // namespace tavrin
