#include "shell/asking/FrontEnd.h"

#include <fmt/format.h>

#include <array>

namespace tavrin {

std::span<const ConfirmationChoice> allowedAnswers(ConfirmationSheet sheet) {
    using enum ConfirmationChoice;
    static constexpr std::array ofSteps{one, all, leaveOut, stop};
    static constexpr std::array ofFailures{one, all, stop};
    if (sheet == ConfirmationSheet::problem)
        return ofFailures;
    return ofSteps;
}

std::string notRenamedText(std::size_t count) {
    return count == 1 ? "1 item was not renamed." : fmt::format("{} items were not renamed.", count);
}

} // namespace tavrin
