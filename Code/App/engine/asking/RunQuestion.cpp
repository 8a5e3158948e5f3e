#include "engine/asking/RunQuestion.h"

#include <array>
#include <utility>

namespace tavrin {

namespace {

using enum ConfirmationChoice;

constexpr std::array ofSteps{one, all, leaveOut, stop};
constexpr std::array ofFailures{one, all, stop};
constexpr std::array ofWarnings{one, stop};
constexpr std::array ofLastWords{one};

struct Allowed {
    using Answers = std::span<const ConfirmationChoice>;
    Answers operator()(const RenameQuestion&) const { return ofSteps; }
    Answers operator()(const SwapQuestion&) const { return ofSteps; }
    Answers operator()(const NameCycleQuestion&) const { return ofSteps; }
    Answers operator()(const ProblemReport&) const { return ofFailures; }
    Answers operator()(const LibraryWarning&) const { return ofWarnings; }
    Answers operator()(const NoRecordQuestion&) const { return ofWarnings; }
    Answers operator()(const PipelineFailure&) const { return ofLastWords; }
};

} // namespace

std::span<const ConfirmationChoice> allowedAnswers(const RunQuestion& question) {
    return std::visit(Allowed(), question);
}

ConfirmationAnswer::ConfirmationAnswer(std::function<void(ConfirmationChoice)> receiver)
    : deliver(std::move(receiver)) {}

ConfirmationAnswer::~ConfirmationAnswer() { give(stop); }

void ConfirmationAnswer::give(ConfirmationChoice choice) {
    if (const auto receiver = std::exchange(deliver, nullptr))
        receiver(choice);
}

} // namespace tavrin
