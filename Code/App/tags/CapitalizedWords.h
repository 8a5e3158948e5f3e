#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// The first letter of each word in upper case, all others in lower case. A word is a run of letters and
/// digits, and of apostrophes behind these.
[[nodiscard]] std::u16string capitalized(std::u16string_view text);

} // namespace tavrin
