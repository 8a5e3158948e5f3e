#include "documents/recipe/RecipeTokens.h"

#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tavrin {

namespace {

constexpr std::u16string_view delimiters = u"/|,:;!@%~+#=^&";
constexpr std::u16string_view typographicQuotes = u"“”„«»‘’‚";
constexpr std::u16string_view plainEscapes = u"\"\\/\n\t\r\b\f";
constexpr std::u16string_view plainEscapeLetters = u"\"\\/ntrbf";
constexpr int deepest = 64;
constexpr char32_t lastCodePoint = 0x10FFFF;

constexpr bool isBlank(char16_t unit) { return unit == u' ' || unit == u'\t' || unit == u'\r'; }
constexpr bool isSeparator(char16_t unit) { return unit == u'|' || unit == u';' || unit == u'\n'; }
constexpr bool isQuote(char16_t unit) { return unit == u'"' || unit == u'\''; }
constexpr bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
constexpr bool isIdentifier(char16_t unit) {
    const auto small = text::units::asciiLower(unit);
    return (small >= u'a' && small <= u'z') || isDigit(unit) || unit == u'_';
}

void appendCodePoint(char32_t c, std::u16string& text) {
    if (c >= 0x10000) {
        text += static_cast<char16_t>(0xD7C0 + (c >> 10));
        c = 0xDC00 + (c & 0x3FF);
    }
    text += static_cast<char16_t>(c);
}

bool isInvisible(char32_t c) {
    return c != U' ' && (c < 0x20 || (c >= 0x7F && (text::isControl(c) || text::isWhitespaceOrNewline(c))) ||
                         (c >= 0xD800 && c < 0xE000));
}

} // namespace

RecipeLexer::RecipeLexer(std::u16string_view recipe) : source(recipe) {
    if (isAt(u"\uFEFF"))
        ++at;
}

void RecipeLexer::fail(std::size_t from, std::string message, std::string hint) const {
    throw RecipeMistake{
        {from, std::max<std::size_t>(at, from + 1) - from}, std::move(message), std::move(hint)};
}

void RecipeLexer::skipBlanks() {
    while (at < source.size() && isBlank(source[at]))
        ++at;
    if (isAt(u"#"))
        at = std::min(source.find(u'\n', at), source.size());
}

RecipeToken RecipeLexer::next() {
    skipBlanks();
    RecipeToken token;
    token.place.location = at;
    if (at == source.size()) {
        token.isEnd = true;
        return token;
    }
    if (isSeparator(source[at])) {
        token.isSeparator = true;
        token.place.length = 1;
        ++at;
        return token;
    }
    if (typographicQuotes.find(source[at]) != typographicQuotes.npos) {
        ++at;
        fail(token.place.location, "a typographic quote", "quotes of recipes are \" and '");
    }
    while (at < source.size() && !isBlank(source[at]) && !isSeparator(source[at])) {
        if (isQuote(source[at])) {
            if (!token.isQuoted)
                token.bareUnits = token.text.size();
            token.isQuoted = true;
            appendQuoted(token.text);
        } else {
            appendBare(token.text);
        }
    }
    if (!token.isQuoted)
        token.bareUnits = token.text.size();
    token.place.length = at - token.place.location;
    return token;
}

void RecipeLexer::appendBare(std::u16string& text) {
    const std::size_t start = at;
    while (at < source.size() && !isBlank(source[at]) && !isSeparator(source[at]) && !isQuote(source[at])) {
        const char32_t c = text::units::codePointAt(source, at);
        const auto units = text::units::unitCount(c);
        if (isInvisible(c) && !text::units::isSurrogate(static_cast<char16_t>(c))) {
            const std::size_t place = at;
            at += units;
            fail(place, fmt::format("the invisible character U+{:04X}", static_cast<std::uint32_t>(c)),
                 fmt::format("within quotes it is \\u{{{:x}}}", static_cast<std::uint32_t>(c)));
        }
        at += units;
    }
    text.append(source, start, at - start);
}

void RecipeLexer::appendQuoted(std::u16string& text) {
    const std::size_t start = at;
    const char16_t quote = source[at++];
    const std::u16string_view special = quote == u'"' ? u"\"\\\n" : u"'\n";
    for (;;) {
        const std::size_t end = source.find_first_of(special, at);
        if (end == source.npos || source[end] == u'\n') {
            at = start + 1;
            fail(start, "the quote has no end",
                 end == source.npos ? "" : "a line break within quotes is \\n");
        }
        text.append(source, at, end - at);
        at = end + 1;
        if (source[end] == quote)
            return;
        appendEscape(text);
    }
}

/// Behind the backslash.
void RecipeLexer::appendEscape(std::u16string& text) {
    const std::size_t start = at - 1;
    if (at < source.size()) {
        const char16_t letter = source[at++];
        if (const auto plain = plainEscapeLetters.find(letter); plain != plainEscapeLetters.npos) {
            text += plainEscapes[plain];
            return;
        }
        if (letter == u'x') {
            const char32_t c = hexadecimal(2, 2);
            text += static_cast<char16_t>(c < 0x80 ? c : 0xDC00 + c);
            return;
        }
        if (letter == u'u' && isAt(u"{")) {
            ++at;
            const char32_t c = hexadecimal(1, 6);
            if (c > lastCodePoint || !isAt(u"}"))
                fail(start, "no character", "it is written \\u{H…}, to \\u{10ffff}");
            ++at;
            appendCodePoint(c, text);
            return;
        }
        if (letter == u'u') {
            text += static_cast<char16_t>(hexadecimal(4, 4));
            return;
        }
    }
    fail(start, fmt::format("\"{}\" is no escape", text::toUtf8(source.substr(start, at - start))),
         "a backslash is \\\\; patterns go into s/…/…/");
}

char32_t RecipeLexer::hexadecimal(std::size_t fewest, std::size_t most) {
    const std::size_t start = at;
    char32_t value = 0;
    for (; at < source.size() && at - start < most; ++at) {
        const char16_t unit = text::units::asciiLower(source[at]);
        if (!isDigit(unit) && (unit < u'a' || unit > u'f'))
            break;
        value = value * 16 + (isDigit(unit) ? unit - u'0' : unit - u'a' + 10);
    }
    if (at - start < fewest)
        fail(start, fmt::format("{} hexadecimal digits are missing", fewest - (at - start)),
             "escapes are \\xHH, \\uHHHH and \\u{H…}");
    return value;
}

// ---- the sed-like form

std::optional<RecipeSlash> RecipeLexer::slash() {
    skipBlanks();
    const std::size_t start = at;
    const auto text = source.substr(at);
    if (text.size() < 2 || (text[0] != u's' && text[0] != u'm') ||
        delimiters.find(text[1]) == delimiters.npos)
        return std::nullopt;
    RecipeSlash form;
    form.letter = static_cast<char>(text[0]);
    const char16_t delimiter = text[1];
    at += 2;
    form.pattern = slashPart(delimiter, false, start);
    form.replacementPlace.location = at;
    form.replacement = slashPart(delimiter, true, start);
    form.replacementPlace.length = at - 1 - form.replacementPlace.location;
    form.flagsStart = at;
    while (at < source.size() && !isBlank(source[at]) && !isSeparator(source[at]))
        form.flags += source[at++];
    form.place = {start, at - start};
    return form;
}

std::u16string RecipeLexer::slashPart(char16_t delimiter, bool unescapes, std::size_t start) {
    std::u16string part;
    for (; at < source.size() && source[at] != delimiter && source[at] != u'\n'; ++at) {
        if (source[at] == u'\\' && at + 1 < source.size() && source[at + 1] != u'\n') {
            if (!unescapes || source[at + 1] != delimiter)
                part += u'\\';
            ++at;
        }
        part += source[at];
    }
    if (at == source.size() || source[at] == u'\n') {
        at = start + 2;
        fail(start, fmt::format("the second or third \"{}\" is missing", static_cast<char>(delimiter)),
             fmt::format("it is written {0}{1}…{1}…{1}", static_cast<char>(source[start]),
                         static_cast<char>(delimiter)));
    }
    ++at;
    return part;
}

// ---- stored entries

std::optional<std::u16string> RecipeLexer::storedKey() {
    skipBlanks();
    const std::size_t start = at;
    std::u16string key;
    if (isAt(u"\"")) {
        appendQuoted(key);
    } else {
        while (at < source.size() && isIdentifier(source[at]))
            key += source[at++];
        if (key.empty())
            return std::nullopt;
    }
    if (!isAt(u":=")) {
        at = start;
        return std::nullopt;
    }
    at += 2;
    return key;
}

PropertyValue RecipeLexer::literal() {
    const std::size_t start = at;
    auto value = literal(0);
    if (at < source.size() && !isBlank(source[at]) && !isSeparator(source[at]))
        fail(start, "the value does not end here", "behind it comes a blank");
    return value;
}

PropertyValue RecipeLexer::literal(int depth) {
    if (depth >= deepest && (isAt(u"[") || isAt(u"{")))
        fail(at, fmt::format("the value has more than {} levels", deepest));
    if (isAt(u"\""))
        return quotedText("a text");
    if (isAt(u"["))
        return array(depth);
    if (isAt(u"{"))
        return dictionary(depth);
    if (isAt(u"data("))
        return data();
    if (isAt(u"date("))
        return date();
    for (const bool truth : {true, false})
        if (const std::u16string_view word = truth ? u"true" : u"false"; isAt(word)) {
            at += word.size();
            return truth;
        }
    return number();
}

PropertyValue RecipeLexer::number() {
    const std::size_t start = at;
    std::string digits;
    while (at < source.size() &&
           (isIdentifier(source[at]) || source[at] == u'.' || source[at] == u'+' || source[at] == u'-'))
        digits += static_cast<char>(source[at++]);
    const char* const end = digits.data() + digits.size();
    std::int64_t whole = 0;
    if (const auto result = std::from_chars(digits.data(), end, whole);
        result.ec == std::errc() && result.ptr == end)
        return whole;
    const bool isWhole = digits.find_first_not_of("-0123456789") == digits.npos;
    double real = 0;
    if (const auto result = std::from_chars(digits.data(), end, real);
        !isWhole && !digits.empty() && result.ec != std::errc::invalid_argument && result.ptr == end)
        return result.ec == std::errc() ? real : (digits.find("e-") == digits.npos ? HUGE_VAL : 0.0);
    fail(start,
         isWhole && digits.find_first_of("0123456789") != digits.npos ? "the number is out of range"
                                                                      : "a value is missing",
         "values are numbers, true, false, \"texts\", [ ], { }, data() and date()");
}

/// From the opening bracket on, calls `readItem` for each of what commas part.
template <typename ReadItem> void RecipeLexer::readList(std::u16string_view end, ReadItem readItem) {
    const std::size_t start = at++;
    bool isFirst = true;
    for (skipBlanks(); !isAt(end); skipBlanks()) {
        if (!isFirst) {
            if (!isAt(u","))
                fail(start, "the bracket has no end");
            ++at;
            skipBlanks();
        }
        isFirst = false;
        readItem();
    }
    ++at;
}

PropertyValue RecipeLexer::array(int depth) {
    PropertyArray values;
    readList(u"]", [&] { values.push_back(literal(depth + 1)); });
    return values;
}

PropertyValue RecipeLexer::dictionary(int depth) {
    PropertyDictionary values;
    readList(u"}", [&] {
        auto key = text::toUtf8(quotedText("a key in quotes"));
        skipBlanks();
        if (!isAt(u":"))
            fail(at, "a key is followed by \":\"");
        ++at;
        skipBlanks();
        values.insert_or_assign(std::move(key), literal(depth + 1));
    });
    return values;
}

PropertyValue RecipeLexer::data() {
    at += 5;
    PropertyData data;
    while (!isAt(u")"))
        data.bytes.push_back(static_cast<std::uint8_t>(hexadecimal(2, 2)));
    ++at;
    return data;
}

PropertyValue RecipeLexer::date() {
    at += 5;
    const auto seconds = number();
    if (!isAt(u")"))
        fail(at, "the bracket has no end", "a date is the number of seconds since 2001-01-01 00:00 UTC");
    ++at;
    const double* real = seconds.asReal();
    return PropertyDate{real ? *real : static_cast<double>(*seconds.asInteger())};
}

std::u16string RecipeLexer::quotedText(std::string_view what) {
    if (!isAt(u"\""))
        fail(at, fmt::format("{} is missing", what));
    std::u16string text;
    appendQuoted(text);
    return text;
}

// ---- writing

namespace recipe {

namespace {

void appendEscaped(char32_t c, std::u16string& into) {
    if (const auto plain = plainEscapes.find(static_cast<char16_t>(c));
        c < 0x80 && plain != plainEscapes.npos && c != U'/')
        (into += u'\\') += plainEscapeLetters[plain];
    else if (c < 0x80)
        into += text::fromUtf8(fmt::format("\\x{:02x}", static_cast<std::uint32_t>(c)));
    else if (c >= 0xDC80 && c <= 0xDCFF)
        into += text::fromUtf8(fmt::format("\\x{:02x}", static_cast<std::uint32_t>(c) & 0xFF));
    else
        into += text::fromUtf8(fmt::format("\\u{{{:x}}}", static_cast<std::uint32_t>(c)));
}

std::string real(double value) {
    if (std::isnan(value))
        return "nan";
    std::string digits = fmt::format("{}", value);
    return digits.find_first_of(".en") == digits.npos ? digits + ".0" : digits;
}

} // namespace

std::u16string quoted(std::u16string_view text) {
    std::u16string result = u"\"";
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = text::units::codePointAt(text, i);
        if (c == U'"' || c == U'\\' || isInvisible(c) || (i == 0 && text::isMark(c)))
            appendEscaped(c, result);
        else
            appendCodePoint(c, result);
        i += text::units::unitCount(c);
    }
    return result + u'"';
}

bool hasInvisible(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const char32_t c = text::units::codePointAt(text, i);
        if (isInvisible(c) || (i == 0 && text::isMark(c)))
            return true;
        i += text::units::unitCount(c);
    }
    return false;
}

std::u16string literal(const PropertyValue& value) {
    if (const auto* truth = value.asBoolean())
        return *truth ? u"true" : u"false";
    if (const auto* whole = value.asInteger())
        return text::fromUtf8(std::to_string(*whole));
    if (const auto* number = value.asReal())
        return text::fromUtf8(real(*number));
    if (const auto* text = value.asText())
        return quoted(*text);
    if (const auto* date = value.asDate())
        return text::fromUtf8(fmt::format("date({})", real(date->secondsSince2001)));
    if (const auto* data = value.asData()) {
        std::string digits;
        for (const auto byte : data->bytes)
            digits += fmt::format("{:02x}", byte);
        return text::fromUtf8(fmt::format("data({})", digits));
    }
    std::u16string list;
    if (const auto* array = value.asArray()) {
        for (const auto& each : *array)
            (list += list.empty() ? u"" : u", ") += literal(each);
        return u'[' + list + u']';
    }
    for (const auto& [key, each] : *value.asDictionary())
        ((list += list.empty() ? u"" : u", ") += quoted(text::fromUtf8(key)) + u": ") += literal(each);
    return u'{' + list + u'}';
}

} // namespace recipe

} // namespace tavrin
