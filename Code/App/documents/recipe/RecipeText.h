#pragma once

#include "support/values/PropertyValue.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// Recipes as text, one line for a whole chain of steps. It says exactly what a stored chain says. Any
/// thread.
namespace tavrin::RecipeText {

/// Rises with each release that adds words.
inline constexpr int languageVersion = 1;
inline constexpr std::size_t mostUnits = 1 << 20; ///< of the text
inline constexpr std::size_t mostSteps = 10'000;

/// Something to say about a place of the text. Nothing in the texts acts on a terminal.
struct Remark {
    std::size_t line = 1;   ///< from 1
    std::size_t column = 1; ///< from 1, as a terminal counts
    std::size_t length = 1; ///< in columns, within the line
    std::string message;
    std::string hint;              ///< what was meant, or how it is written; may be empty
    std::string excerpt;           ///< the line, or of a long one what is around the place
    std::size_t excerptColumn = 1; ///< where the place begins in it

    /// Message and hint.
    [[nodiscard]] std::string sentence() const;
};

struct Reading {
    PropertyDictionary flatParameterList; ///< as chains are stored
    std::vector<Remark> notes;            ///< what is no mistake, but probably not meant
};

/// The first mistake, or the chain.
[[nodiscard]] std::variant<Reading, Remark> read(std::u16string_view recipe);

/// The steps of a flat parameter list in canonical form, also those of actions that there are not.
[[nodiscard]] std::vector<std::u16string> writeSteps(const PropertyDictionary& flatParameterList);
/// The list without what actions have written into it for the user to read: no part of what they do.
[[nodiscard]] PropertyDictionary withoutStatus(PropertyDictionary flatParameterList);
/// All on one line.
[[nodiscard]] std::u16string write(const PropertyDictionary& flatParameterList);

} // namespace tavrin::RecipeText
