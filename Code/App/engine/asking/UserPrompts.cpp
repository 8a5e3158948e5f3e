#include "engine/asking/UserPrompts.h"

#include <utility>

namespace tavrin {

ConfirmationAnswer::ConfirmationAnswer(std::function<void(ConfirmationChoice)> receiver)
    : deliver(std::move(receiver)) {}

ConfirmationAnswer::~ConfirmationAnswer() { give(ConfirmationChoice::stop); }

void ConfirmationAnswer::give(ConfirmationChoice choice) {
    if (const auto receiver = std::exchange(deliver, nullptr))
        receiver(choice);
}

} // namespace tavrin
