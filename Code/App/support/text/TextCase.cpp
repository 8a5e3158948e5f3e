#include "support/text/Text.h"
#include "support/text/TextIcu.h"
#include "support/text/TextSearchKey.h"
#include "support/text/TextUnits.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <limits>

namespace tavrin::text {

namespace {

/// ICU's name of the root locale; null would be the user's.
constexpr const char* rootLocale = "";

template <typename Map> std::u16string eachUnit(std::u16string_view text, Map map) {
    std::u16string result(text.size(), u'\0');
    char16_t* out = result.data();
    const char16_t* const in = text.data();
    for (std::size_t i = 0; i < text.size(); ++i)
        out[i] = map(in[i]);
    return result;
}

/// Whether a byte that leads a longer sequence leads to characters without case, whatever follows: those of
/// U+3000 to U+9FFF and U+B000 to U+D7FF.
constexpr bool leadsToNoCase(unsigned char byte) { return byte >= 0xE3 && byte <= 0xED && byte != 0xEA; }

/// Lower-cases bytes as far as no mapping changes a length or looks at its neighbours: characters below
/// U+0100, combining marks below U+0370, East Asian text. False at the first other character.
bool lowercaseSimpleBytes(std::string_view bytes, std::string& into) {
    char* const out = into.data();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        out[i] = static_cast<char>(units::asciiLower(byte));
        if (byte < 0xC3 || leadsToNoCase(byte))
            continue;
        const auto second = static_cast<unsigned char>(i + 1 < bytes.size() ? bytes[i + 1] : 0);
        const bool isMark = byte == 0xCC || (byte == 0xCD && second < 0xB0);
        if (byte != 0xC3 && !isMark)
            return false;
        if (byte == 0xC3 && (second & 0xC0) == 0x80)
            out[++i] =
                static_cast<char>(second + (units::isLatin1Capital(0xC0u + (second & 0x3F)) ? 0x20 : 0));
    }
    return true;
}

} // namespace

std::u16string uppercased(std::u16string_view text) {
    if (units::allAscii(text))
        return eachUnit(text, units::asciiUpper<char16_t>);
    return icu::filled(text, "upper case", [&](char16_t* buffer, std::int32_t capacity, UErrorCode* status) {
        return u_strToUpper(buffer, capacity, text.data(), icu::length(text), rootLocale, status);
    });
}

std::u16string lowercased(std::u16string_view text) {
    if (units::allBelow100(text))
        return eachUnit(text, units::latin1Lower);
    return icu::filled(text, "lower case", [&](char16_t* buffer, std::int32_t capacity, UErrorCode* status) {
        return u_strToLower(buffer, capacity, text.data(), icu::length(text), rootLocale, status);
    });
}

std::u16string caseFolded(std::u16string_view text) {
    if (units::allAscii(text))
        return eachUnit(text, units::asciiLower<char16_t>);
    return icu::filled(text, "case folding",
                       [&](char16_t* buffer, std::int32_t capacity, UErrorCode* status) {
                           return u_strFoldCase(buffer, capacity, text.data(), icu::length(text),
                                                U_FOLD_CASE_DEFAULT, status);
                       });
}

void lowercaseBytes(std::string_view bytes, std::string& into) {
    into.resize(bytes.size());
    char* const out = into.data();
    unsigned char all = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        all |= byte;
        out[i] = static_cast<char>(units::asciiLower(byte));
    }
    if (all < 0x80 || lowercaseSimpleBytes(bytes, into))
        return;
    // Case mapping neither drops characters nor touches surrogates, so the way back can't fail.
    into = toUtf8(lowercased(fromBytes(bytes)));
}

bool equalIgnoringCase(std::u16string_view a, std::u16string_view b) {
    if (units::allAscii(a) && units::allAscii(b)) {
        if (a.size() != b.size())
            return false;
        for (std::size_t i = 0; i < a.size(); ++i)
            if (units::asciiLower(a[i]) != units::asciiLower(b[i]))
                return false;
        return true;
    }
    return a == b || searchKey(a, CaseSensitivity::insensitive) == searchKey(b, CaseSensitivity::insensitive);
}

namespace {

bool hasCategory(char32_t c, std::uint32_t categories) {
    return (U_GET_GC_MASK(static_cast<UChar32>(c)) & categories) != 0;
}

} // namespace

bool isLetter(char32_t c) { return hasCategory(c, U_GC_L_MASK | U_GC_M_MASK); }
bool isMark(char32_t c) { return hasCategory(c, U_GC_M_MASK); }
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
