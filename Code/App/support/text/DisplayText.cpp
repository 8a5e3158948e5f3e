#include "support/text/DisplayText.h"

#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <fmt/format.h>
#include <unicode/uchar.h>

#include <iterator>

namespace tavrin::display {

namespace {

bool isControl(char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); }
bool isLeading(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isTrailing(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

/// How many units the character at `at` takes; 0 for half of a pair.
std::size_t unitsOfCharacter(std::u16string_view text, std::size_t at) {
    if (isLeading(text[at]))
        return at + 1 < text.size() && isTrailing(text[at + 1]) ? 2 : 0;
    return isTrailing(text[at]) ? 0 : 1;
}

bool turnsDirection(char16_t unit) {
    return unit == 0x200E || unit == 0x200F || (unit >= 0x202A && unit <= 0x202E) ||
           (unit >= 0x2066 && unit <= 0x2069);
}

constexpr char32_t emojiSelector = 0xFE0F;

std::size_t columnsOf(char32_t c) {
    const auto character = static_cast<UChar32>(c);
    const int type = u_charType(character);
    const int jamo = u_getIntPropertyValue(character, UCHAR_HANGUL_SYLLABLE_TYPE);
    const bool isJoined = jamo == U_HST_VOWEL_JAMO || jamo == U_HST_TRAILING_JAMO;
    if (c == emojiSelector) // makes the character before it wide, if the terminal knows of it
        return 1;
    if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || type == U_FORMAT_CHAR || isJoined)
        return 0;
    const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

/// Calls `escape(unit)` for each unit that needs it, and appends everything else in UTF-8.
template <typename NeedsEscape, typename Escape>
void appendEscaped(std::u16string_view text, std::string& into, NeedsEscape needsEscape, Escape escape) {
    std::size_t plainStart = 0;
    const auto appendPlain = [&](std::size_t end) {
        if (end > plainStart)
            into += text::toUtf8(text.substr(plainStart, end - plainStart));
    };
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t units = unitsOfCharacter(text, i);
        if (units == 0 || (units == 1 && needsEscape(text[i]))) {
            appendPlain(i);
            escape(text[i]);
            plainStart = ++i;
        } else {
            i += units;
        }
    }
    appendPlain(text.size());
}

} // namespace

void appendJson(std::u16string_view text, std::string& into) {
    into += '"';
    appendEscaped(
        text, into, [](char16_t unit) { return isControl(unit) || unit == u'"' || unit == u'\\'; },
        [&](char16_t unit) {
            if (unit == u'"' || unit == u'\\')
                (into += '\\') += static_cast<char>(unit);
            else
                fmt::format_to(std::back_inserter(into), "\\u{:04x}", static_cast<unsigned>(unit));
        });
    into += '"';
}

std::string visible(std::string_view bytes) { return visible(text::fromBytes(bytes)); }

std::string visible(std::u16string_view text) {
    std::string result;
    appendEscaped(
        text, result, [](char16_t unit) { return isControl(unit) || turnsDirection(unit); },
        [&](char16_t unit) {
            if (unit == u'\n')
                result += "\\n";
            else if (unit == u'\t')
                result += "\\t";
            else if (unit < 0x80)
                result += fmt::format("\\x{:02x}", static_cast<unsigned>(unit));
            else if (isTrailing(unit)) // stands for a byte
                result += fmt::format("\\x{:02x}", static_cast<unsigned>(unit) & 0xFF);
            else
                result += fmt::format("\\u{:04x}", static_cast<unsigned>(unit));
        });
    return result;
}

std::size_t columns(std::u16string_view text) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = text::units::codePointAt(text, i);
        i += text::units::unitCount(c);
        count += c < text::units::firstCombining ? 1 : columnsOf(c);
    }
    return count;
}

} // namespace tavrin::display
