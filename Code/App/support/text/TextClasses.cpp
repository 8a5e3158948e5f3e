#include "support/text/Text.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <limits>

namespace tavrin::text {
namespace {

bool hasCategory(char32_t c, std::uint32_t categories) {
    return (U_GET_GC_MASK(static_cast<UChar32>(c)) & categories) != 0;
}

} // namespace

bool isLetter(char32_t c) { return hasCategory(c, U_GC_L_MASK | U_GC_M_MASK); }
bool isUppercaseLetter(char32_t c) { return hasCategory(c, U_GC_LU_MASK | U_GC_LT_MASK); }
bool isLowercaseLetter(char32_t c) { return hasCategory(c, U_GC_LL_MASK); }
bool isWhitespaceOrNewline(char32_t c) {
    return (c >= 0x09 && c <= 0x0D) || c == 0x85 || hasCategory(c, U_GC_Z_MASK);
}
bool isPunctuation(char32_t c) { return hasCategory(c, U_GC_P_MASK); }
bool isDecimalDigit(char32_t c) { return hasCategory(c, U_GC_ND_MASK); }
bool isControl(char32_t c) { return hasCategory(c, U_GC_CC_MASK | U_GC_CF_MASK); }

std::int32_t intValue(std::u16string_view text) {
    using Limits = std::numeric_limits<std::int32_t>;
    std::size_t at = 0;
    while (at < text.size() && isWhitespaceOrNewline(text[at]))
        ++at;
    const bool isNegative = at < text.size() && text[at] == u'-';
    if (isNegative || (at < text.size() && text[at] == u'+'))
        ++at;
    std::int64_t value = 0;
    for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at)
        value = std::min<std::int64_t>(value * 10 + (text[at] - u'0'), std::int64_t{Limits::max()} + 1);
    return static_cast<std::int32_t>(isNegative ? -value : std::min<std::int64_t>(value, Limits::max()));
}

} // namespace tavrin::text
