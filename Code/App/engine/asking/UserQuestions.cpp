#include "engine/asking/UserQuestions.h"

#include "engine/asking/AskUser.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProcessingStage.h"
#include "support/text/PathParts.h"

#include <utility>

namespace tavrin {

UserQuestions::UserQuestions(EngineState& newEngine, ProcessingStage& newErrors, bool shouldBeInteractive)
    : engine(newEngine), errors(newErrors), interactive(shouldBeInteractive) {}

bool UserQuestions::shouldAbort() {
    aborting |= engine.isStopRequested();
    return aborting;
}

template <typename Ask> ConfirmationChoice UserQuestions::ask(Ask question) {
    return askUser(engine.host(), std::move(question));
}

UserQuestions::Decision UserQuestions::decide(ConfirmationChoice choice) {
    switch (choice) {
    case ConfirmationChoice::all:
        interactive = false;
        return Decision::perform;
    case ConfirmationChoice::one:
        return Decision::perform;
    case ConfirmationChoice::stop:
        aborting = true;
        return Decision::stop;
    case ConfirmationChoice::leaveOut:
        break;
    }
    return Decision::leaveOut;
}

UserQuestions::Decision UserQuestions::confirmRename(const RenameQuestion& question) {
    return decide(ask([question](UserPrompts& prompts, ConfirmationAnswerPointer answer) {
        prompts.confirmRename(question, std::move(answer));
    }));
}

UserQuestions::Decision UserQuestions::confirmSwap(const SwapQuestion& question) {
    return decide(ask([question](UserPrompts& prompts, ConfirmationAnswerPointer answer) {
        prompts.confirmSwap(question, std::move(answer));
    }));
}

UserQuestions::Decision UserQuestions::confirmNameCycle(const NameCycleQuestion& question) {
    Decision decision = Decision::perform;
    if (interactive)
        decision = decide(ask([question](UserPrompts& prompts, ConfirmationAnswerPointer answer) {
            prompts.confirmNameCycle(question, std::move(answer));
        }));
    if (decision != Decision::leaveOut)
        interactive = false;
    return decision;
}

void UserQuestions::displayError(const std::string& title, const std::string& message,
                                 const std::string& path) {
    if (!showErrorDialog || aborting)
        return errors.addError(title, message, path);
    const ProblemReport report{title, message, path, std::string(PathParts(path).folder)};
    const auto choice = ask([report](UserPrompts& prompts, ConfirmationAnswerPointer answer) {
        prompts.reportProblem(report, std::move(answer));
    });
    if (choice == ConfirmationChoice::all)
        showErrorDialog = false;
    if (choice == ConfirmationChoice::stop)
        aborting = true;
}

bool UserQuestions::continues(ConfirmationChoice choice) {
    if (choice != ConfirmationChoice::one)
        aborting = true;
    return choice == ConfirmationChoice::one;
}

bool UserQuestions::confirmWithoutRecord(const std::string& reason) {
    return continues(ask([reason](UserPrompts& prompts, ConfirmationAnswerPointer answer) {
        prompts.confirmWithoutRecord(reason, std::move(answer));
    }));
}

bool UserQuestions::showITunesWarningDialog() {
    return continues(ask([](UserPrompts& prompts, ConfirmationAnswerPointer answer) {
        prompts.showITunesWarning(std::move(answer));
    }));
}

bool UserQuestions::showIPhotoWarningDialog() {
    return continues(ask([](UserPrompts& prompts, ConfirmationAnswerPointer answer) {
        prompts.showIPhotoWarning(std::move(answer));
    }));
}

} // namespace tavrin
