#pragma once

#include "RecipeOptions.h"
#include "actions/BaseRenameAction.h"

/// Parameters of actions as people type them.
namespace tavrin {

/// Whether the row is shown to people: an action knows some that it has no use for, or that its siblings
/// have.
[[nodiscard]] bool isOffered(const BaseRenameAction& action, const ParameterDescription& row);

/// Sets a parameter, which goes by its key, its label or the word that recipes have in front of its value, to
/// what the window would let a user give it: a number in its range, one of its choices by number, label or
/// word, a text as the action checks it. Throws UsageError, and has then set nothing.
void setParameter(BaseRenameAction& action, const KeyAndValue& given);

} // namespace tavrin
