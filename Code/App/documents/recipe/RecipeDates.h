#pragma once

#include "documents/recipe/RecipeWords.h"

#include <array>
#include <optional>

namespace tavrin::recipe {

/// The values of the three rows of a date: its pattern, that of the time, and what is between and in which
/// order. The last stays what it is in a new step where one of the two is left out.
using DateChoice = std::array<std::int32_t, 3>;

/// "YYYY-MM-DD HH-mm-ss" and so on, also with the fields of strftime. Absent for a text that is none.
[[nodiscard]] std::optional<DateChoice> dateChoice(std::string_view text, const RecipeAction& action);
/// Absent where a value is none of the choices.
[[nodiscard]] std::optional<std::string> dateText(const DateChoice& choice, const RecipeAction& action);
/// All texts of a date alone, of a time alone, and both in the usual way.
[[nodiscard]] std::vector<std::string> usualDateTexts(const RecipeAction& action);

/// Of those the ones that begin so; behind the first half of a text also all with it.
[[nodiscard]] std::vector<std::string> dateTextsFrom(std::string_view beginning, const RecipeAction& action);

} // namespace tavrin::recipe
