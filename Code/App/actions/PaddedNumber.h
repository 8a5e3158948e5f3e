#pragma once

#include <cstdint>
#include <string>

namespace tavrin {

/// Appends a number as C prints it with the format "%0", padding, "d": zeros on the left up to the padding,
/// the sign within it; blanks on the right for a negative padding. The width is bounded: no name is longer
/// than 1024.
void appendPaddedNumber(std::int32_t number, std::int32_t padding, std::u16string& result);

} // namespace tavrin
