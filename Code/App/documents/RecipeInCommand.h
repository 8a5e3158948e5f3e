#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// What a line of a shell says that runs `tvrn`, of its recipe alone. UTF-8.
struct RecipeInCommand {
    std::string recipe;  ///< its text
    std::string problem; ///< why there is none that can be taken over, in one sentence; else empty

    /// Absent where no `tvrn` is run. The lines are read by the rules of a POSIX shell; nothing is expanded.
    [[nodiscard]] static std::optional<RecipeInCommand> find(std::string_view lines);
};

} // namespace tavrin
