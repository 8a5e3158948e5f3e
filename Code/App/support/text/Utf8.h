#pragma once

#include <string_view>

namespace tavrin::text {

/// Whether bytes are well-formed UTF-8 (RFC 3629).
[[nodiscard]] bool isUtf8(std::string_view bytes);

/// Whether a text made from bytes holds an escape for one that could not be decoded: a low surrogate that is
/// no half of a pair.
[[nodiscard]] bool hasEscape(std::u16string_view text);

} // namespace tavrin::text
