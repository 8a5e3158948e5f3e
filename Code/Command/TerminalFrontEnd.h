#pragma once

#include "shell/asking/FrontEnd.h"

#include <span>
#include <string>

namespace tavrin {

class InterruptHandler;
class QueueRunLoop;
class Terminal;

/// Stands in front of the application on a terminal: tells failures on standard error, and asks there where
/// it may. Where nobody can be asked, a question is answered so that the run goes on, and a warning so that
/// it does not.
class TerminalFrontEnd : public FrontEnd {
  public:
    TerminalFrontEnd(Terminal& usedTerminal, QueueRunLoop& mainLoop, const InterruptHandler& handler)
        : terminal(usedTerminal), loop(mainLoop), interrupts(handler) {}

    /// Asks the user; without it nothing is asked.
    void setInteractive(bool isInteractive) { interactive = isInteractive; }

    /// A run that can't be recorded is refused.
    void requireRecord() { needsRecord = true; }

    /// Something was told as failed.
    [[nodiscard]] bool hasFailures() const { return failures; }
    /// A run was refused: before it began, or at an item that must not be touched.
    [[nodiscard]] bool wasRefused() const { return refused; }
    /// The user stopped the run by an answer.
    [[nodiscard]] bool wasStopped() const { return stopped; }
    [[nodiscard]] bool hasPreviewFinished() const { return previewIsFinished; }

    /// Tells failures, one line each.
    void tellFailures(const std::vector<ProcessingError>& errors);

    void showAlert(const Alert& alert, std::function<void(AlertAnswer)> answer) override;
    void showNotice(NoticeDialog dialog, std::function<void(NoticeAnswer)> answer) override;
    void ask(const RunQuestion& question, std::function<void(ConfirmationChoice)> answer) override;
    void showProcessingErrors(const FailureReport& report, std::function<void()> closed) override;
    void askForFilesToAdd(const std::string& startFolder,
                          std::function<void(std::optional<FilesToAdd>)> answer) override;
    void askForFileListFormat(std::function<void(FileListChoice)> answer) override;
    void askForSavePath(const std::string& title,
                        std::function<void(std::optional<std::string>)> answer) override;
    void presentError(const std::string& message) override;
    void presentNotice(const std::string& text) override;
    void terminate() override;
    void previewFinished() override { previewIsFinished = true; }

  private:
    void tellFailure(const std::string& title, const std::string& message, const std::string& path);
    void tellAlert(const Alert& alert);
    ConfirmationChoice answerTo(const RenameQuestion& question);
    ConfirmationChoice answerTo(const SwapQuestion& question);
    ConfirmationChoice answerTo(const NameCycleQuestion& question);
    ConfirmationChoice answerTo(const ProblemReport& report);
    ConfirmationChoice answerTo(const LibraryWarning& warning);
    ConfirmationChoice answerTo(const NoRecordQuestion& question);
    ConfirmationChoice answerTo(const PipelineFailure& failure);
    ConfirmationChoice choose(const std::string& question, std::span<const ConfirmationChoice> allowed);

    Terminal& terminal;
    QueueRunLoop& loop;
    const InterruptHandler& interrupts;
    bool interactive = false;
    bool needsRecord = false;
    bool failures = false;
    bool refused = false;
    bool stopped = false;
    bool previewIsFinished = false;
};

} // namespace tavrin
