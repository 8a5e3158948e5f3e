#pragma once

#include "actions/ActionFamilies.h"

#include <string>
#include <string_view>
#include <vector>

/// Actions as people call them.
namespace tavrin::actionNames {

/// The actions of the catalogue that a text may mean: one by its stored name or its label, or those of a verb
/// of recipes, of which a place behind it ("add start") leaves one. Case makes no difference; a stored name
/// as it is wins. Empty where there is none.
[[nodiscard]] std::vector<const ActionEntry*> meantBy(std::string_view text);

/// The one that a text means; of a verb alone the action without a place. Throws UsageError, which says what
/// may have been meant.
[[nodiscard]] const ActionEntry& onlyOneMeantBy(std::string_view text);
/// To be told where there is none.
[[nodiscard]] std::string complaintAbout(std::string_view text);

/// The verb, with the place if the action has one.
[[nodiscard]] std::string recipeWords(const ActionEntry& entry);

/// ASCII in small letters, other characters as they are.
[[nodiscard]] std::string inSmallLetters(std::string_view text);

} // namespace tavrin::actionNames
