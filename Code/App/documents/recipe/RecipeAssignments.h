#pragma once

#include "documents/recipe/RecipeTokens.h"
#include "documents/recipe/RecipeWords.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The parameters of a step as its words tell them, each once. All throw RecipeMistake.
class RecipeAssignments {
  public:
    /// The token is what told the value.
    void set(const ParameterDescription& row, PropertyValue value, const RecipeToken& token);
    /// Chooses the mode of which the row is a form, if it is one.
    void setMode(const RecipeAction& action, const ParameterDescription& row, const RecipeToken& token);
    /// The digits may have a sign.
    void setNumber(const RecipeAction& action, const ParameterDescription& row, const RecipeToken& token,
                   std::u16string_view digits);
    void setDate(const RecipeAction& action, const RecipeToken& token);
    /// `word=value`; the row is that of the word.
    void setOption(const RecipeAction& action, const ParameterDescription& row, const RecipeToken& token);
    /// Where nothing else was told.
    void setUsual(const ParameterDescription& row, std::int32_t value);

    [[nodiscard]] bool has(const ParameterDescription& row) const;
    /// By key, since each action has rows of its own.
    [[nodiscard]] bool hasKey(std::string_view key) const;
    /// Puts the values over those that are there; they are gone then.
    void moveInto(PropertyDictionary& parameters);

  private:
    struct Assignment {
        const ParameterDescription* row;
        PropertyValue value;
        std::string shown;
    };
    [[nodiscard]] const Assignment* of(const ParameterDescription& row) const;

    std::vector<Assignment> all;
};

} // namespace tavrin
