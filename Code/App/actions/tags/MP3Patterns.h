#pragma once

#include "support/values/PropertyValue.h"

#include <string>
#include <string_view>
#include <vector>

/// The patterns of the music actions, which have a small vocabulary of their own: tags are replaced as plain
/// text, one after the other.
namespace tavrin {

/// All tags of the vocabulary, with their angle brackets.
[[nodiscard]] std::vector<std::u16string_view> musicTags();
/// Whether the metadata has all that the pattern asks for; false for an empty pattern.
[[nodiscard]] bool allDataForPattern(std::u16string_view pattern, const PropertyDictionary& tags);
/// The pattern with its tags replaced, those of missing values by nothing. A value that holds a later tag
/// is replaced in turn, up to a length that no name can have.
[[nodiscard]] std::u16string filledPattern(std::u16string pattern, const PropertyDictionary& tags);

} // namespace tavrin
