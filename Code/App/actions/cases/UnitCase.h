#pragma once

#include "support/text/Text.h"

#include <string>
#include <string_view>

namespace tavrin {

/// Case mapping of one UTF-16 code unit by itself: full mapping, so one unit may become several; half a
/// surrogate pair stays.
inline void appendUppercasedUnit(char16_t unit, std::u16string& result) {
    if (unit < 0x80)
        result += unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
    else
        result += text::uppercased(std::u16string_view(&unit, 1));
}

inline void appendLowercasedUnit(char16_t unit, std::u16string& result) {
    if (unit < 0x80)
        result += unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
    else
        result += text::lowercased(std::u16string_view(&unit, 1));
}

} // namespace tavrin
