#pragma once

#include "documents/recipe/RecipeWords.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavrin::recipe {

struct Completion {
    std::u16string text; ///< the whole recipe, with its last token complete
    std::string about;   ///< what the word is about; empty where it speaks for itself
};

/// What the last token of an unfinished recipe may become: words of the language, a tag of a pattern, the
/// pattern of a date; a quote that is open around the last one is closed. Empty where free text stands, where
/// the step in hand has a mistake already, and for a text with control characters, which could not be told in
/// one line. Steps in front of the last one are not looked into.
[[nodiscard]] std::vector<Completion> completions(std::u16string_view recipe, RecipeVocabulary& vocabulary);

} // namespace tavrin::recipe
