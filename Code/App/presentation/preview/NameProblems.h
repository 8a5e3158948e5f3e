#pragma once

#include <string>

namespace tavrin {

/// Why no file can have this name, as far as the name alone tells; null where it can.
[[nodiscard]] const char* problemOfName(const std::u16string& name);

} // namespace tavrin
