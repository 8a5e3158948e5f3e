#pragma once

#include "engine/asking/UserPrompts.h"

#include <functional>

namespace tavrin {

class EngineHost;

/// Puts a question to the user on the main thread and waits for the answer. When the run loop has ended, or
/// the question is dropped unanswered, the answer is "stop". Worker threads only.
ConfirmationChoice askUser(EngineHost& host,
                           std::function<void(UserPrompts&, ConfirmationAnswerPointer)> question);

} // namespace tavrin
