#pragma once

#include "engine/asking/RunQuestion.h"
#include "engine/history/RunRecord.h"
#include "store/contexts/SmallEntities.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class BaseRenameAction;

/// What an alert is about, for front ends that answer some by a rule of their own.
enum class AlertKind {
    noActiveActions,
    filesNotAdded,
    itemsNotRemoved,
    manualSorting,
    runQuestion,
    nothingToTakeBack,
    summary,
    fileListSaved,
    dropletLocked,
    dropletNotCreated,
    dropletIsSilent,
    dropletUpgrade,
    presetDeletion,
    exifSortingOff,
    tagNotPresent,
    presetMigration,
    dropletMigration,
    updateAvailable,
    noUpdate,
    settingsSetAside,
    namesByHandLost,
};

enum class AlertStyle { warning, informational, critical };

struct Alert {
    AlertKind kind;
    AlertStyle style = AlertStyle::warning;
    std::string title;
    std::string text;
    std::vector<std::string> buttons; ///< the first is the default
    bool hasSuppressionBox = false;
    std::string helpAnchor = {}; ///< the page that a help button opens; empty: there is no such button
    bool isAwaited = false;      ///< the application ends, or goes on, when it is closed
};

struct AlertAnswer {
    std::size_t button = 0; ///< counted as in `buttons`
    bool suppress = false;  ///< the box was ticked
};

/// Explaining dialogs with a check box "do not show again". Their wording is the front end's.
enum class NoticeDialog {
    noFilesSelected,
    inconsistentSettings,
    dropletInformation,
    dropletEditMode,
    simpleTemplateFileList,
};

struct NoticeAnswer {
    static constexpr int ok = 1;
    static constexpr int cancel = 2;
    static constexpr int help = 3;
    int choice = ok; ///< 4 and 5 are further buttons
    bool doNotShowAgain = false;
};

/// A question of a run in the words of an alert, whose buttons stand for the answers that it allows, in their
/// order; absent for those that a front end words itself.
[[nodiscard]] std::optional<Alert> alertOf(const RunQuestion& question);

/// What to tell at the end of a run in which items kept their names against the plan.
struct FailureReport {
    std::vector<ProcessingError> errors; ///< those that have not been told during the run
    std::size_t notRenamed = 0;          ///< all such items, told or not
    std::string done;                    ///< what was done, in a sentence or two
};
[[nodiscard]] inline std::string notRenamedText(std::size_t count) {
    return count == 1 ? "1 item was not renamed." : std::to_string(count) + " items were not renamed.";
}

/// How a run has ended.
struct RunReport {
    RunKind what = RunKind::rename;
    std::size_t changed = 0;    ///< names
    std::size_t notRenamed = 0; ///< items that failed, told on the way or not
    std::size_t untouched = 0;  ///< items that a stopped run has not come to
    bool wasStopped = false;
    bool wasClosed = false;   ///< the user has closed the window in the middle of it
    bool endsProgram = false; ///< the application ends when this is read, unless the user wants it to stay
    bool clearsList = false;
    std::string run = {};                     ///< what the history calls it; empty: it was not recorded
    std::string summary = {};                 ///< what was done, in a sentence
    std::string details = {};                 ///< how far it came, where it was cut by the end of the window
    std::vector<ProcessingError> errors = {}; ///< those that have not been told during the run
};
enum class ReportAnswer { close, keepOpen, undoAndQuit };

struct FilesToAdd {
    std::vector<std::string> paths; ///< absolute, in bytes
    std::string folder;             ///< the one that the panel shows in the end
};

/// The answer of the save-list dialog.
struct FileListChoice {
    int choice = NoticeAnswer::ok; ///< ok, cancel or help
    int format = 0;                ///< 0 to 2
    bool shouldIncludeOnlyAffectedFiles = false;
};

/// Asked before an undo or redo that can't do all, or that takes up a run of somebody else, or of another
/// day.
struct UndoQuestion {
    RunKind what = RunKind::undo;
    bool finishes = false;       ///< a redo that does what a run has left undone
    bool isOwn = false;          ///< the run was made by this program since its start
    std::string run;             ///< what the history calls it
    std::string who;             ///< "tvrn", "window", "droplet"
    std::optional<double> began; ///< seconds since 2001
    std::string folder;
    std::size_t possible = 0; ///< of names
    std::size_t total = 0;
    std::vector<ProcessingError> reasons = {}; ///< the first of those why others are not possible
};
enum class UndoAnswer { cancel, showInHistory, go };

/// A run that was cut off.
struct InterruptedRun {
    std::string run; ///< what the history calls it
    RunKind what = RunKind::rename;
    std::optional<double> began; ///< seconds since 2001
    std::string folder = {};     ///< that holds all that it was about
    std::size_t changed = 0;     ///< of names
    std::size_t total = 0;
    std::size_t withTemporaryName = 0;
};
/// `takeBack` is an undo of what was done; of an undo that was cut off it is a redo.
enum class InterruptedRunAnswer { finish, takeBack, show };

/// What to ask the user for, in the words of a panel.
struct LocatePanel {
    std::string title;
    std::string message;
    std::string prompt; ///< of the button that accepts
};

/// What came from an address: its bytes, or why nothing did, as a part of a sentence.
struct FetchedAddress {
    std::optional<std::string> bytes;
    std::string error = {};
};

enum class MainTab { interface = 0, progress = 1 };
enum class PreviewTab { progressBar = 0, status = 1 };
enum class PreviewColumn {
    path,
    currentName,
    newName,
    regex1,
    regex2,
    regex3,
    regex4,
    regex5,
    regex6,
    problem,
};

/// All that the application needs of whatever stands in front of it: to show, and to ask. Texts are UTF-8,
/// paths are bytes. Called on the main thread only; every call returns at once, no call waits in an event
/// loop of its own.
///
/// A question is answered by calling its handler on the main thread, at once or later, at most once. A
/// handler that is dropped uncalled stands for a window that was closed. No handler may be called when the
/// controller is gone.
class FrontEnd {
  public:
    virtual ~FrontEnd() = default;

    // --- Asking ---
    virtual void showAlert(const Alert& alert, std::function<void(AlertAnswer)> answer) = 0;
    virtual void showNotice(NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) = 0;
    /// A question of a run. The answer is one that it allows; a handler that is dropped stands for "stop".
    virtual void ask(const RunQuestion& question, std::function<void(ConfirmationChoice)> answer) = 0;
    virtual void showProcessingErrors(const FailureReport& report, std::function<void()> closed) = 0;
    /// The end of a run. The answer counts where it ends the program; one that is dropped stands for "close".
    /// The default shows the failures, or else an alert with the summary.
    virtual void showRunReport(const RunReport& report, std::function<void(ReportAnswer)> answer);
    /// Closes the questions of a run that are open, as answered with "stop".
    virtual void withdrawQuestions() {}
    /// Called with nothing when the user cancels, as below.
    virtual void askForFilesToAdd(const std::string& startFolder,
                                  std::function<void(std::optional<FilesToAdd>)> answer) = 0;
    virtual void askForFileListFormat(std::function<void(FileListChoice)> answer) = 0;
    virtual void askForSavePath(const std::string& title,
                                std::function<void(std::optional<std::string>)> answer) = 0;
    /// The place of a droplet as the user has named it, with any extension or none. Asks whether a droplet
    /// of that name is to be replaced. The default of this and the next ones is to cancel.
    virtual void askForDropletPath(const std::string& /*title*/, const std::string& /*startFolder*/,
                                   std::function<void(std::optional<std::string>)> answer) {
        answer(std::nullopt);
    }

    /// Whether an undo or redo is to be done. The default is that it is not.
    virtual void askToUndo(const UndoQuestion&, std::function<void(UndoAnswer)> answer) {
        answer(UndoAnswer::cancel);
    }
    /// Told at the start; who does not answer is told at the next one. "Show" may be answered again and
    /// again.
    virtual void tellInterruptedRun(const InterruptedRun&, std::function<void(InterruptedRunAnswer)>) {}
    /// For one or more droplets: their bundle folders, or the launchers that stand for them.
    virtual void askForDroplets(const LocatePanel&,
                                std::function<void(std::optional<std::vector<std::string>>)> answer) {
        answer(std::nullopt);
    }
    virtual void askForFolder(const LocatePanel&, std::function<void(std::optional<std::string>)> answer) {
        answer(std::nullopt);
    }
    /// Loads what lies at a web address, `limit` bytes at most. Nothing of it is kept or run.
    virtual void fetchAddress(const std::string& /*address*/, std::size_t /*limit*/,
                              std::function<void(FetchedAddress)> answer) {
        answer({std::nullopt, "there is no way to the network"});
    }

    // --- Showing: a front end does what it has the means for ---
    virtual void presentError(const std::string& message) = 0;
    /// Tells something that the user should know, though nothing has failed by it.
    virtual void presentNotice(const std::string& text) = 0;
    /// The application has ended its work: leave the event loop.
    virtual void terminate() = 0;
    virtual void selectMainTab(MainTab) {}
    virtual void selectPreviewTab(PreviewTab) {}
    virtual void setColumnWidth(PreviewColumn, int /*minimum*/, int /*maximum*/, int /*width*/) {}
    virtual void setColumnHidden(PreviewColumn, bool /*hidden*/) {}
    virtual void sizeColumnsToFit() {}
    /// The rows of the list, or which there are, may have changed; so may whether the rename button is on.
    virtual void previewListChanged() {}
    /// What the list shows is out of date: a preview is due, or has been asked for.
    virtual void previewRequested() {}
    /// A preview has ended: its result is in the list and in the status line.
    virtual void previewFinished() {}
    /// The user is adding paths; what comes on the list from now on is among them.
    virtual void addingPaths() {}
    /// The user has added these, as paths in bytes.
    virtual void pathsAdded(const std::vector<std::string>& /*paths*/) {}
    /// A run has begun or ended; commands are off during a run.
    virtual void runStateChanged(bool /*isRunning*/) {}
    virtual void fillPresetMenu(const std::vector<std::u16string>& /*titles*/) {}
    /// The list was read anew, and so many of its items were no longer there.
    virtual void itemsWereGone(std::size_t /*count*/) {}
    /// There are other names by hand, or other items are left out; the list shows it when a preview has
    /// ended.
    virtual void handEditsChanged() {}
    /// The steps of the chain, or which is current, may have changed.
    virtual void actionListChanged() {}
    /// Brings the panel of an action up and gives it the input focus. The action lives as long as its step.
    virtual void showActionPanel(BaseRenameAction&) {}
    /// Where the list of steps ends, in points from the left; 0 hides it.
    virtual void setDividerPosition(double) {}
    virtual void centreWindow() {}
    virtual void showWindow() {}
    virtual void hideWindow() {}
    virtual void enterDropletEditMode() {}
    virtual void showHelp(std::string_view /*anchor*/) {}
    /// Shows the history, with this run chosen where one is named.
    virtual void showHistory(const std::string& /*run*/) {}
    /// Shows a file in the file browser and opens it.
    virtual void revealPath(const std::string&) {}
    /// Shows a page of the web in the browser.
    virtual void openAddress(const std::string& /*address*/) {}
    virtual void beep() {}
};

inline void FrontEnd::showRunReport(const RunReport& report, std::function<void(ReportAnswer)> answer) {
    const auto closed = [answer = std::move(answer)] { answer(ReportAnswer::close); };
    if (!report.errors.empty()) {
        const std::string done = report.summary + (report.details.empty() ? "" : " " + report.details);
        showProcessingErrors({report.errors, report.notRenamed, done}, closed);
        return;
    }
    std::string details = report.details;
    if (report.notRenamed > 0)
        details += (details.empty() ? "" : " ") + notRenamedText(report.notRenamed);
    showAlert({.kind = AlertKind::summary,
               .style = AlertStyle::informational,
               .title = report.summary,
               .text = details,
               .buttons = {"OK"}},
              [closed](AlertAnswer) { closed(); });
}

} // namespace tavrin
