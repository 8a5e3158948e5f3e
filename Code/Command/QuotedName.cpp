#include "QuotedName.h"

#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <fmt/format.h>

#include <array>
#include <utility>

namespace tavrin {

namespace {

constexpr std::array<std::pair<char16_t, char16_t>, 7> shortEscapes{{{u'"', u'"'},
                                                                     {u'\\', u'\\'},
                                                                     {u'n', u'\n'},
                                                                     {u't', u'\t'},
                                                                     {u'r', u'\r'},
                                                                     {u'b', u'\b'},
                                                                     {u'f', u'\f'}}};
constexpr char16_t firstByteEscape = 0xDC00; // of what stands for a byte

bool needsEscape(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) ||
           (c < 0x10000 && text::units::isSurrogate(static_cast<char16_t>(c)));
}

std::string escapeOf(char32_t c) {
    for (const auto& [letter, meant] : shortEscapes)
        if (c == meant)
            return {'\\', static_cast<char>(letter)};
    const auto number = static_cast<unsigned>(c);
    if (c >= 0xDC80 && c <= 0xDCFF)
        return fmt::format("\\x{:02x}", number & 0xFF);
    return fmt::format("\\u{{{:x}}}", number);
}

/// So many hexadecimal digits from the front of the text, which are taken off.
std::optional<char32_t> takeNumber(std::u16string_view& text, std::size_t fewest, std::size_t most) {
    char32_t number = 0;
    std::size_t count = 0;
    for (; count < most && count < text.size(); ++count) {
        const char16_t digit = text::units::asciiLower(text[count]);
        if (digit >= u'0' && digit <= u'9')
            number = number * 16 + (digit - u'0');
        else if (digit >= u'a' && digit <= u'f')
            number = number * 16 + 10 + (digit - u'a');
        else
            break;
    }
    text.remove_prefix(count);
    return count >= fewest && number <= 0x10FFFF ? std::optional(number) : std::nullopt;
}

/// What the escape stands for at the front of the text, behind its backslash.
std::optional<char32_t> takeEscape(std::u16string_view& text) {
    if (text.empty())
        return std::nullopt;
    const char16_t letter = text.front();
    text.remove_prefix(1);
    for (const auto& [known, meant] : shortEscapes)
        if (letter == known)
            return meant;
    if (letter == u'x') {
        const auto byte = takeNumber(text, 2, 2);
        return byte && *byte >= 0x80 ? std::optional<char32_t>(firstByteEscape + *byte) : byte;
    }
    if (letter == u'u' && text.starts_with(u'{')) {
        text.remove_prefix(1);
        const auto number = takeNumber(text, 1, 6);
        const bool isClosed = text.starts_with(u'}');
        text.remove_prefix(isClosed ? 1 : 0);
        return isClosed ? number : std::nullopt;
    }
    return letter == u'u'   ? takeNumber(text, 4, 4)
           : letter == u'/' ? std::optional<char32_t>(letter)
                            : std::nullopt;
}

void append(char32_t c, std::u16string& into) {
    if (c >= 0x10000) {
        into += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
        into += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
        into += static_cast<char16_t>(c);
    }
}

} // namespace

std::u16string quotedName(std::u16string_view name) {
    std::u16string result = u"\"";
    for (std::size_t i = 0; i < name.size();) {
        const char32_t c = text::units::codePointAt(name, i);
        i += text::units::unitCount(c);
        if (c == U'"' || c == U'\\' || needsEscape(c))
            result += text::fromUtf8(escapeOf(c));
        else
            append(c, result);
    }
    return result + u'"';
}

std::optional<std::u16string> unquotedName(std::u16string_view quoted) {
    if (quoted.size() < 2 || quoted.front() != u'"')
        return std::nullopt;
    quoted.remove_prefix(1);
    std::u16string result;
    while (!quoted.empty() && quoted.front() != u'"') {
        const char16_t unit = quoted.front();
        quoted.remove_prefix(1);
        if (unit != u'\\') {
            result += unit;
            continue;
        }
        const auto c = takeEscape(quoted);
        if (!c)
            return std::nullopt;
        append(*c, result);
    }
    return quoted == u"\"" ? std::optional(result) : std::nullopt;
}

} // namespace tavrin
