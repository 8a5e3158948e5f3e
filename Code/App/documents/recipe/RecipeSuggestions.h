#pragma once

#include "documents/recipe/RecipeTokens.h"
#include "documents/recipe/RecipeWords.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// A word that may come next, and what it is about.
struct RecipeCandidate {
    std::string word;
    std::string about;
};

namespace recipe {

/// What a token says, in UTF-8.
[[nodiscard]] std::string shown(const RecipeToken& token);
/// Throws RecipeMistake.
[[noreturn]] void fail(const RecipeToken& token, std::string message, std::string hint = {});

/// What may have been meant by a word that is none of these; else what may stand there.
[[nodiscard]] std::string suggestion(std::string_view word, const std::vector<RecipeCandidate>& allowed);
/// Throws RecipeMistake for a word that is no verb.
[[noreturn]] void failVerb(const RecipeToken& token, const std::vector<RecipeCandidate>& verbs);
/// Why `all`, which seems near, is no word.
[[nodiscard]] std::string_view hintOnAll();

} // namespace recipe

} // namespace tavrin
