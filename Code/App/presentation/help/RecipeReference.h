#pragma once

#include <QString>

namespace tavrin {

class RecipeAction;
struct ParameterDescription;

/// What the help says of recipes as text, made from the tables of the actions; HTML unless said otherwise.
namespace recipeReference {

/// How a step of the action begins: verb, texts, phrases, place. What may be left out stands in brackets.
[[nodiscard]] QString beginning(const RecipeAction& action);
/// The word of the parameter, as plain text; empty where it has none, its choices have it, or `beginning` has
/// it.
[[nodiscard]] QString word(const ParameterDescription& parameter);
/// A whole page: the verbs with their synonyms and actions, then the synonyms of words.
[[nodiscard]] QString page();

} // namespace recipeReference
} // namespace tavrin
