#pragma once

#include "CommandLine.h"
#include "documents/RecipeFile.h"

#include <vector>

namespace tavrin {

class BaseAction;
class TVRNGlobalPreferencesPseudoAction;

/// The chain that the command line asks for, checked in full. Throws UsageError.
[[nodiscard]] Recipe loadRecipe(const RecipeSource& source);

/// Stores the given settings over those of the recipe. Throws UsageError before anything is stored.
void applySettings(const Recipe& recipe, const std::vector<KeyAndValue>& given,
                   TVRNGlobalPreferencesPseudoAction& settings);

} // namespace tavrin
