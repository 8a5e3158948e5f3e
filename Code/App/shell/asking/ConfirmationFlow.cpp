#include "shell/asking/ConfirmationFlow.h"

#include "actions/CompositeRenameAction.h"
#include "actions/SortBasedAction.h"
#include "engine/history/TakeBack.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/pipeline/RenameEngine.h"
#include "shell/commands/ActionListCommands.h"
#include "shell/commands/DropletCommands.h"
#include "shell/preview/PreviewControl.h"
#include "shell/start/StoreOwner.h"
#include "store/sources/SourceItemManager.h"
#include "support/application/DebugLog.h"

#include <fmt/format.h>

#include <algorithm>
#include <mutex>

namespace tavrin {

ConfirmationFlow::ConfirmationFlow(ShellServices& shared, Units otherUnits, std::function<void()> terminate)
    : services(shared), units(otherUnits), terminateNow(std::move(terminate)),
      self(std::make_shared<ConfirmationFlow*>(this)) {}

ConfirmationFlow::~ConfirmationFlow() { *self = nullptr; }

// ---- starting a run

void ConfirmationFlow::ok() {
    units.preview.firePendingPreview();
    executeRenameAndQuit(services.settings.values().shouldQuitAfterRename != 0);
}

void ConfirmationFlow::executeRenameAndQuit(bool quit) {
    if (services.mode != OperationMode::dropletEdit) {
        applyCurrentSettings(quit);
        return;
    }
    if (const auto error = units.droplets.saveDropletSettings(dropletSettingsPath))
        services.frontEnd.presentError("The droplet could not be saved. " + *error);
    else
        terminateNow();
}

void ConfirmationFlow::applyCurrentSettings(bool quit, std::function<void(bool)> then) {
    if (services.sourceItems.isEmpty()) {
        units.notices.showNoFilesSelectedDialog([then](int) { then(false); });
        return;
    }
    if (!units.commands.validateActionList()) {
        then(false);
        return;
    }
    if (!services.settings.values().shouldProcessFiles && !services.settings.values().shouldProcessFolders) {
        units.notices.showInconsistentSettingsDialog(
            [this, then](int choice) { settingsAreInconsistent(choice, then); });
        return;
    }
    startRun(quit);
    then(true);
}

void ConfirmationFlow::settingsAreInconsistent(int choice, const std::function<void(bool)>& then) {
    if (choice == NoticeAnswer::help) {
        then(true);
        return;
    }
    services.settings.setShouldProcessFiles(1);
    services.settings.setShouldProcessFolders(1);
    then(false);
}

void ConfirmationFlow::startRun(bool quit) {
    quitsAfterRun = quit;
    if (quit)
        services.engine.processRenamingPipelineThenQuit(services.progress);
    else if (services.settings.values().shouldContinueAfterRename)
        services.engine.processRenamingPipelineThenContinue(services.progress);
    else
        services.engine.processRenamingPipelineThenClearList(services.progress);
}

void ConfirmationFlow::createFileList() {
    if (!units.commands.validateActionList())
        return;
    services.frontEnd.askForFileListFormat([this](FileListChoice choice) {
        if (choice.choice == NoticeAnswer::help)
            services.frontEnd.showHelp("helpTopic29");
        if (choice.choice != NoticeAnswer::ok)
            return;
        services.frontEnd.askForSavePath("Save File List", [this, choice](std::optional<std::string> path) {
            if (path)
                services.engine.processFileListPipeline(services.progress, choice.format,
                                                        choice.shouldIncludeOnlyAffectedFiles, *path);
        });
    });
}

// ---- the progress view

void ConfirmationFlow::startProgressWindow() {
    debugLog("--- startProgressWindow");
    isReportDue = true;
    services.engine.runOutcomes().begin({}, std::nullopt);
    setCurrentlyShowingProgressTab(true);
    services.frontEnd.selectMainTab(MainTab::progress);
}

void ConfirmationFlow::stopProgressWindow() {
    debugLog("--- stopProgressWindow");
    setCurrentlyShowingProgressTab(false);
    services.frontEnd.selectMainTab(MainTab::interface);
    if (services.settings.values().shouldContinueAfterRename) {
        services.frontEnd.selectPreviewTab(PreviewTab::progressBar);
        services.progress.forceUpdate();
    } else {
        services.frontEnd.selectPreviewTab(PreviewTab::status);
    }
}

void ConfirmationFlow::interruptProgressWindow() {
    debugLog("--- interruptProgressWindow");
    setCurrentlyShowingProgressTab(false);
    services.frontEnd.selectMainTab(MainTab::interface);
}

void ConfirmationFlow::setCurrentlyShowingProgressTab(bool isShowing) {
    const bool before = std::exchange(isShowingProgress, isShowing);
    services.frontEnd.runStateChanged(isShowing);
    units.preview.observeValueForKeyPath("currentlyShowingProgressTab", nullptr, before, isShowing);
}

// ---- the questions of a run

void ConfirmationFlow::ask(const RunQuestion& question, const ConfirmationAnswerPointer& answer) {
    if (const auto choice = answerWithoutUser(question))
        answer->give(*choice);
    else
        services.frontEnd.ask(question, [answer](ConfirmationChoice given) { answer->give(given); });
}

std::optional<ConfirmationChoice> ConfirmationFlow::answerWithoutUser(const RunQuestion& question) const {
    using enum ConfirmationChoice;
    if (std::holds_alternative<PipelineFailure>(question))
        return std::nullopt;
    if (std::holds_alternative<NoRecordQuestion>(question)) // nobody sits before a silent droplet
        return services.isSilentDroplet() ? std::optional(one) : std::nullopt;
    // A run that is being stopped asks nothing more, but tells what fails; unless nobody is left to be told.
    if (services.engine.isStopRequested() &&
        (!std::holds_alternative<ProblemReport>(question) || tellInstead))
        return stop;
    if (const auto* warning = std::get_if<LibraryWarning>(&question)) {
        const Settings settings = services.settings.values();
        const bool isWarned = warning->library == LibraryWarning::Library::iTunes
                                  ? settings.shouldPreventAccidentalITunesLibraryDamage
                                  : settings.shouldPreventAccidentalIPhotoLibraryDamage;
        return isWarned ? std::nullopt : std::optional(one);
    }
    return std::nullopt;
}

// ---- the end of a run

struct ConfirmationFlow::RunResult {
    std::vector<ProcessingError> errors;
    std::int32_t planned = 0;
    std::int32_t renamed = 0;
    std::size_t notRenamed = 0;
    RunKind what = RunKind::rename;

    [[nodiscard]] std::string summary() const {
        return renamed == 0   ? "No file names were changed."
               : renamed == 1 ? "1 file name was changed."
                              : fmt::format("{} file names were changed.", renamed);
    }
};

ConfirmationFlow::RunResult ConfirmationFlow::resultOfRun() {
    StoreContext& context = units.store.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    const EngineControl& control = context.engineControl();
    RunResult result{context.processingErrors(), control.numberOfFilesThatNeedRenaming,
                     std::max(0, control.numberOfActuallyRenamedFiles), 0};
    result.notRenamed = std::max(result.errors.size(),
                                 static_cast<std::size_t>(std::max(0, control.numberOfItemsNotRenamed)));
    return result;
}

void ConfirmationFlow::showCompletionDialog() {
    undoBeforeQuit.clear();
    tellEnd(resultOfRun());
}

void ConfirmationFlow::tellEndOfTakeBack(const TakeBackResult& result) {
    if (result.chosen.run.name != undoBeforeQuit)
        undoBeforeQuit.clear(); // it was another one after all
    tellEnd({result.errors, result.planned, result.changed,
             std::max(result.errors.size(), static_cast<std::size_t>(result.failed)), result.chosen.what});
}

bool ConfirmationFlow::endWithoutReport() {
    isReportDue = false;
    undoBeforeQuit.clear();
    if (const auto tell = std::exchange(tellInstead, nullptr)) {
        tell("Nothing was renamed.");
        return false;
    }
    if (isWindowClosed)
        terminateWhenReportIsClosed();
    return !isWindowClosed;
}

void ConfirmationFlow::tellEnd(const RunResult& result) {
    isReportDue = false;
    const bool wasCut = (isWindowClosed || tellInstead) && result.renamed < result.planned;
    std::string details;
    if (wasCut)
        details = fmt::format("The rename was stopped: {} of {} items have got their new names.",
                              result.renamed, result.planned);
    if (const auto tell = std::exchange(tellInstead, nullptr)) {
        tell(fmt::format("{}{}{}{}", result.summary(), wasCut ? " " : "", details,
                         result.notRenamed > 0 ? fmt::format(" {}", notRenamedText(result.notRenamed)) : ""));
        return;
    }
    if (services.isSilentDroplet())
        return;
    const bool undoneBeforeQuit = !std::exchange(undoBeforeQuit, {}).empty();
    const bool isFailed = !result.errors.empty() || result.notRenamed > 0;
    const bool endsProgram = isWindowClosed || undoneBeforeQuit || std::exchange(quitsAfterRun, false) ||
                             services.mode == OperationMode::dropletRun;
    const bool isWanted = services.settings.values().shouldShowSummary() && !undoneBeforeQuit;
    if (isFailed || isWanted || isWindowClosed) {
        RunReport report = reportOf(result);
        report.endsProgram = endsProgram;
        report.details = details;
        const auto closed = endsProgram ? reportIsOpen() : [] {};
        services.frontEnd.showRunReport(report, [this, closed, endsProgram, alive = std::weak_ptr(self),
                                                 run = report.run](ReportAnswer answer) {
            if (endsProgram && !alive.expired())
                answerReport(answer, run);
            closed();
        });
    }
    if (isWindowClosed || undoneBeforeQuit)
        terminateWhenReportIsClosed();
}

RunReport ConfirmationFlow::reportOf(const RunResult& result) const {
    RunReport report{.what = result.what,
                     .changed = static_cast<std::size_t>(result.renamed),
                     .notRenamed = result.notRenamed,
                     .wasStopped = services.engine.runOutcomes().wasStopped(),
                     .wasClosed = isWindowClosed,
                     .clearsList = !services.settings.values().shouldContinueAfterRename,
                     .run = services.engine.recordOfLastRun(),
                     .summary = result.summary(),
                     .errors = result.errors};
    const auto touched = static_cast<std::int64_t>(report.changed + report.notRenamed);
    report.untouched = static_cast<std::size_t>(std::max<std::int64_t>(0, result.planned - touched));
    return report;
}

/// The answer of somebody whose program is about to end.
void ConfirmationFlow::answerReport(ReportAnswer answer, const std::string& run) {
    if (answer == ReportAnswer::close)
        return;
    isTerminationDue = false;
    isWindowClosed = false;
    if (answer == ReportAnswer::undoAndQuit) {
        undoBeforeQuit = run;
        units.undoRun(run);
    } else {
        services.engine.rereadAtNextPreview();
        units.preview.initiateDelayedPreviewUpdate();
    }
}

void ConfirmationFlow::showFileListSavingCompletionDialog(int format) {
    isReportDue = false;
    const char* const saved = "The file list was successfully saved.";
    if (const auto tell = std::exchange(tellInstead, nullptr)) {
        tell(saved);
        return;
    }
    const bool isSortBased =
        dynamic_cast<const SortBasedAction*>(&services.composite.getCurrentAction()) != nullptr;
    if (format == 1 && !isSortBased && !isWindowClosed) {
        units.notices.showSimpleTemplateInformation();
        return;
    }
    services.frontEnd.showAlert({.kind = AlertKind::fileListSaved,
                                 .style = AlertStyle::informational,
                                 .title = saved,
                                 .text = "",
                                 .buttons = {"OK"},
                                 .isAwaited = isWindowClosed},
                                [closed = reportIsOpen()](AlertAnswer) { closed(); });
    if (isWindowClosed)
        terminateWhenReportIsClosed();
}

void ConfirmationFlow::showFileListNotSaved(const std::string& path, const std::string& reason) {
    isReportDue = false;
    const std::string report =
        fmt::format("The file list could not be saved. \"{}\" could not be written: {}", path, reason);
    if (const auto tell = std::exchange(tellInstead, nullptr)) {
        tell(report);
        return;
    }
    isWindowClosed = false; // so that it can be saved elsewhere
    services.frontEnd.presentError(report);
}

void ConfirmationFlow::closeWindow() {
    if (!isReportDue) {
        terminateNow(); // whoever closes the window has read what it shows
        return;
    }
    isWindowClosed = true;
    services.engine.requestStop();
    services.frontEnd.withdrawQuestions();
}

bool ConfirmationFlow::stopRun(std::function<void(const std::string&)> tell) {
    if (!isReportDue)
        return false;
    tellInstead = std::move(tell);
    services.engine.requestStopAtSessionEnd();
    services.frontEnd.withdrawQuestions();
    return true;
}

std::function<void()> ConfirmationFlow::reportIsOpen() {
    struct Closing {
        std::shared_ptr<ConfirmationFlow*> flow;
        void close() {
            const auto owner = std::exchange(flow, nullptr);
            if (!owner || !*owner)
                return;
            --(*owner)->openReports;
            if ((*owner)->isTerminationDue)
                (*owner)->terminateWhenReportIsClosed();
        }
        ~Closing() { close(); }
    };
    ++openReports;
    const auto closing = std::shared_ptr<Closing>(new Closing{self});
    return [closing] { closing->close(); };
}

void ConfirmationFlow::terminateWhenReportIsClosed() {
    isTerminationDue = openReports > 0;
    if (!isTerminationDue)
        terminateNow();
}

} // namespace tavrin
