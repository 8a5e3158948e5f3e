#pragma once

#include <string>
#include <string_view>

/// Forms in which tags give the texts and numbers of the metadata.
namespace tavrin {

/// The first letter of each word in upper case, all others in lower case. A word is a run of letters and
/// digits, and of apostrophes behind these.
[[nodiscard]] std::u16string capitalized(std::u16string_view text);
/// The first code unit in upper case, the rest in lower case.
[[nodiscard]] std::u16string sentenceCased(std::u16string_view text);
/// With a zero in front of a single character.
[[nodiscard]] std::u16string zeroPadded(std::u16string_view number);

} // namespace tavrin
