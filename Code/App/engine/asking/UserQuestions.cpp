#include "engine/asking/UserQuestions.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProcessingStage.h"
#include "platform/processes/RunLoop.h"

#include <future>
#include <utility>

namespace tavrin {

ConfirmationChoice askUser(EngineHost& host, RunQuestion question) {
    const auto promise = std::make_shared<std::promise<ConfirmationChoice>>();
    std::future<ConfirmationChoice> choice = promise->get_future();
    // The only owner of the answer is what is posted: a loop that drops the action drops the answer with it.
    host.runLoop().post([&host, question = std::move(question),
                         answer = std::make_shared<ConfirmationAnswer>([promise](ConfirmationChoice given) {
                             promise->set_value(given);
                         })] { host.ask(question, answer); });
    return choice.get();
}

UserQuestions::UserQuestions(EngineState& newEngine, ProcessingStage& newErrors, bool shouldBeInteractive)
    : engine(newEngine), errors(newErrors), interactive(shouldBeInteractive) {}

bool UserQuestions::shouldAbort() {
    aborting |= engine.isStopRequested();
    return aborting;
}

UserQuestions::Decision UserQuestions::decide(const RunQuestion& question) {
    switch (askUser(engine.host(), question)) {
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

UserQuestions::Decision UserQuestions::confirmNameCycle(const NameCycleQuestion& question) {
    const Decision decision = interactive ? decide(question) : Decision::perform;
    if (decision != Decision::leaveOut)
        interactive = false;
    return decision;
}

void UserQuestions::displayError(const std::string& title, const std::string& message,
                                 const std::string& path) {
    if (!showErrorDialog || aborting)
        return errors.addError(title, message, path);
    const ConfirmationChoice choice = askUser(engine.host(), ProblemReport{title, message, path});
    if (choice == ConfirmationChoice::all)
        showErrorDialog = false;
    if (choice == ConfirmationChoice::stop)
        aborting = true;
}

bool UserQuestions::continues(const RunQuestion& question) {
    const bool goesOn = askUser(engine.host(), question) == ConfirmationChoice::one;
    aborting |= !goesOn;
    return goesOn;
}

} // namespace tavrin
