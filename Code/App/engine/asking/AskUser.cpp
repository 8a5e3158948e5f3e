#include "engine/asking/AskUser.h"

#include "engine/pipeline/EngineHost.h"
#include "platform/processes/RunLoop.h"

#include <future>
#include <memory>
#include <utility>

namespace tavrin {

ConfirmationChoice askUser(EngineHost& host,
                           std::function<void(UserPrompts&, ConfirmationAnswerPointer)> question) {
    const auto promise = std::make_shared<std::promise<ConfirmationChoice>>();
    std::future<ConfirmationChoice> choice = promise->get_future();
    auto answer = std::make_unique<ConfirmationAnswer>(
        [promise](ConfirmationChoice given) { promise->set_value(given); });
    // Shared because a posted action must be copyable; a loop that drops the action drops the answer with it.
    // None of it may live on in this frame, which waits.
    host.runLoop().post([&host, question = std::move(question),
                         carrier = std::make_shared<ConfirmationAnswerPointer>(std::move(answer))] {
        question(host.userPrompts(), std::move(*carrier));
    });
    return choice.get();
}

} // namespace tavrin
