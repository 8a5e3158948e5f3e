#include "support/Text.h"
#include "support/TextIcu.h"
#include "support/TextSearchKey.h"
#include "support/TextUnits.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

namespace tavrin::text {
namespace {

/// ICU's name of the root locale; null would be the user's.
constexpr const char* rootLocale = "";

template <typename Unit> constexpr bool isLatin1Capital(Unit unit) {
    return static_cast<std::uint16_t>(unit - 0xC0) < 0x1F && unit != 0xD7;
}

template <typename Map> std::u16string eachUnit(std::u16string_view text, Map map) {
    std::u16string result(text.size(), u'\0');
    char16_t* out = result.data();
    const char16_t* const in = text.data();
    for (std::size_t i = 0; i < text.size(); ++i)
        out[i] = map(in[i]);
    return result;
}

template <typename Fill> std::u16string mapped(std::u16string_view text, const char* what, Fill fill) {
    std::u16string result;
    icu::append(result, text.size() + 8, what, fill);
    return result;
}

/// Lower-cases bytes whose characters all lie below U+0100, where no mapping changes a length or looks at
/// its neighbours; false at the first other character.
bool lowercaseLatin1Bytes(std::string_view bytes, std::string& into) {
    char* const out = into.data();
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte >= 0xC4)
            return false;
        out[i] = static_cast<char>(units::asciiLower(byte));
        if (byte != 0xC3 || i + 1 == bytes.size())
            continue;
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        if ((second & 0xC0) == 0x80) {
            const int letter = 0xC0 + (second & 0x3F);
            out[++i] = static_cast<char>(second + (isLatin1Capital(letter) ? 0x20 : 0));
        }
    }
    return true;
}

} // namespace

std::u16string uppercased(std::u16string_view text) {
    if (units::allAscii(text))
        return eachUnit(text, units::asciiUpper<char16_t>);
    return mapped(text, "upper case", [&](char16_t* buffer, std::int32_t capacity, UErrorCode* status) {
        return u_strToUpper(buffer, capacity, text.data(), icu::length(text), rootLocale, status);
    });
}

std::u16string lowercased(std::u16string_view text) {
    if (units::allBelow100(text))
        return eachUnit(text, [](char16_t unit) {
            return static_cast<char16_t>(units::asciiLower(unit) + (isLatin1Capital(unit) ? 0x20 : 0));
        });
    return mapped(text, "lower case", [&](char16_t* buffer, std::int32_t capacity, UErrorCode* status) {
        return u_strToLower(buffer, capacity, text.data(), icu::length(text), rootLocale, status);
    });
}

std::u16string caseFolded(std::u16string_view text) {
    if (units::allAscii(text))
        return eachUnit(text, units::asciiLower<char16_t>);
    return mapped(text, "case folding", [&](char16_t* buffer, std::int32_t capacity, UErrorCode* status) {
        return u_strFoldCase(buffer, capacity, text.data(), icu::length(text), U_FOLD_CASE_DEFAULT, status);
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
    if (all < 0x80 || lowercaseLatin1Bytes(bytes, into))
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

} // namespace tavrin::text
