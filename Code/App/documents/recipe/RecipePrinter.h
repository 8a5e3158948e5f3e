#pragma once

#include "documents/recipe/RecipeWords.h"
#include "support/values/PropertyValue.h"

#include <string>

namespace tavrin {

/// Writes steps in their canonical form: words where there are any, in the order of RecipeForm, and stored
/// entries for all that the words so written do not say.
class RecipePrinter {
  public:
    explicit RecipePrinter(RecipeVocabulary& words) : vocabulary(words) {}

    /// The step as chains are stored.
    [[nodiscard]] std::u16string step(const PropertyDictionary& stored);

  private:
    [[nodiscard]] std::u16string byName(std::u16string_view name, const PropertyDictionary& parameters);

    RecipeVocabulary& vocabulary;
};

} // namespace tavrin
