#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// ISO 8859-2 as UTF-8.
std::string latin2ToUtf8(std::string_view bytes);

} // namespace tavrin
