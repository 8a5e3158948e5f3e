#pragma once

#include "actions/ActionFamilies.h"

#include <string>
#include <vector>

/// What there is to know of an action.
namespace tavrin::actionDescriptions {

/// For people: several lines.
[[nodiscard]] std::string text(const ActionEntry& entry);
/// For programs: an object in one line.
[[nodiscard]] std::string json(const ActionEntry& entry);

/// An example as a step of a recipe, in canonical form.
[[nodiscard]] std::string recipeOf(const ActionEntry& entry, const ActionExample& example);
/// What the example says of the file beside its name, in sentences.
[[nodiscard]] std::vector<std::string> circumstancesOf(const ActionExample& example);

} // namespace tavrin::actionDescriptions
