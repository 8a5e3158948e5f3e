#pragma once

#include "support/values/PropertyValue.h"

#include <string>
#include <string_view>

namespace tavrin {

/// The patterns of the music actions, which have a small vocabulary of their own: tags are replaced as plain
/// text, one after the other.
struct MP3Patterns {
    /// Whether the metadata has all that the pattern asks for; false for an empty pattern.
    [[nodiscard]] static bool allDataForPattern(std::u16string_view pattern, const PropertyDictionary& tags);
    /// The pattern with its tags replaced, those of missing values by nothing. A value that holds a later tag
    /// is replaced in turn, up to a length that no name can have.
    [[nodiscard]] static std::u16string filled(std::u16string pattern, const PropertyDictionary& tags);
    /// First character in upper case, the rest in lower case.
    [[nodiscard]] static std::u16string sentenceCase(std::u16string_view text);
};

} // namespace tavrin
