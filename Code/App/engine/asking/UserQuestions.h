#pragma once

#include "engine/asking/RunQuestion.h"

#include <string>

namespace tavrin {

class EngineHost;
class ProcessingStage;
class EngineState;

/// Puts a question to the user on the main thread and waits for the answer. When the run loop has ended, or
/// the question is dropped unanswered, the answer is "stop". Worker threads only.
ConfirmationChoice askUser(EngineHost& host, RunQuestion question);

/// Asks the user in the middle of a rename and remembers what the answers mean for the rest of the run. The
/// worker waits for each answer; a request to stop the engine counts as the answer "stop".
class UserQuestions {
  public:
    /// What is to become of the step that was asked about.
    enum class Decision { perform, leaveOut, stop };

    /// `errors` takes the failures that are not shown one by one.
    UserQuestions(EngineState& engine, ProcessingStage& errors, bool shouldBeInteractive);

    [[nodiscard]] bool isInteractive() const { return interactive; }
    /// Whether the run is to stop: by an answer, or because the engine was asked to. Never false again.
    [[nodiscard]] bool shouldAbort();

    // To be asked only while isInteractive.
    Decision confirmRename(const RenameQuestion& question) { return decide(question); }
    Decision confirmSwap(const SwapQuestion& question) { return decide(question); }
    /// Unless it is left out, nobody is asked any more after this.
    Decision confirmNameCycle(const NameCycleQuestion& question);

    /// Shows a failure, or records it once the user has chosen not to see them one by one, or to stop. `path`
    /// is the full path in bytes.
    void displayError(const std::string& title, const std::string& message, const std::string& path);

    /// Whether the run is to begin although it leaves no record; otherwise it stops.
    bool confirmWithoutRecord(const std::string& reason) { return continues(NoRecordQuestion{reason}); }
    /// True for "Continue"; otherwise the run stops.
    bool showITunesWarningDialog() { return continues(LibraryWarning{LibraryWarning::Library::iTunes}); }
    bool showIPhotoWarningDialog() { return continues(LibraryWarning{LibraryWarning::Library::iPhoto}); }

  private:
    Decision decide(const RunQuestion& question);
    bool continues(const RunQuestion& question);

    EngineState& engine;
    ProcessingStage& errors;
    bool interactive;
    bool showErrorDialog = true;
    bool aborting = false;
};

} // namespace tavrin
