#pragma once

#include "documents/recipe/RecipeWords.h"

#include <string>
#include <vector>

namespace tavrin {

/// A part of the line that tells how an action is written.
struct RecipeUsagePart {
    enum class Kind {
        word,   ///< of the language
        text,   ///< stands for a text, by the label of its parameter
        number, ///< for a number
        mark,   ///< a bracket around what may be left out, a bar between what exclude each other
    };
    Kind kind;
    std::string shown;
    bool followsBlank = true; ///< else it belongs to what is in front of it
};

/// How a step of the action begins: verb, texts, phrases, place.
[[nodiscard]] std::vector<RecipeUsagePart> recipeUsage(const RecipeAction& action);
/// The same on one line, with texts in quotes and numbers in capitals.
[[nodiscard]] std::string recipeUsageLine(const RecipeAction& action);

} // namespace tavrin
