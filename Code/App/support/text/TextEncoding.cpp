#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <memory>
#include <string>

namespace tavrin::text {

namespace {

constexpr char16_t escapeBase = 0xDC00;
constexpr char32_t replacementCharacter = 0xFFFD;

bool isEscape(char16_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

struct Decoded {
    char32_t codePoint;
    std::size_t length; ///< in bytes, 0 if no well-formed sequence begins here
};

/// `lead` is no ASCII byte. Overlong forms, surrogates and values above 10FFFF are not well-formed.
Decoded decode(const unsigned char* bytes, std::size_t available) {
    const auto continues = [&](std::size_t index) {
        return index < available && (bytes[index] & 0xC0) == 0x80;
    };
    const unsigned char lead = bytes[0];
    if (lead < 0xC2 || lead > 0xF4 || !continues(1))
        return {0, 0};
    const char32_t second = bytes[1] & 0x3F;
    if (lead < 0xE0)
        return {(lead & 0x1Fu) << 6 | second, 2};
    if (!continues(2))
        return {0, 0};
    const char32_t third = bytes[2] & 0x3F;
    if (lead < 0xF0) {
        const char32_t c = (lead & 0x0Fu) << 12 | second << 6 | third;
        const bool isValid = c >= 0x800 && (c < 0xD800 || c > 0xDFFF);
        return {c, isValid ? 3u : 0u};
    }
    if (!continues(3))
        return {0, 0};
    const char32_t c = (lead & 0x07u) << 18 | second << 12 | third << 6 | (bytes[3] & 0x3Fu);
    return {c, c >= 0x10000 && c <= 0x10FFFF ? 4u : 0u};
}

char16_t* putUnits(char16_t* out, char32_t c) {
    if (c < 0x10000) {
        *out++ = static_cast<char16_t>(c);
    } else {
        *out++ = static_cast<char16_t>(0xD7C0 + (c >> 10));
        *out++ = static_cast<char16_t>(0xDC00 + (c & 0x3FF));
    }
    return out;
}

char* putBytes(char* out, char32_t c) {
    const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(byte); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    }
    return out;
}

struct Encoded {
    bool hasEscapes = false;
    bool hasStrays = false; ///< lone surrogates that stand for no byte, written as U+FFFD
};

Encoded encode(std::u16string_view text, std::string& into) {
    Encoded result;
    if (isAscii(text)) {
        into.resize(text.size());
        char* const out = into.data();
        const char16_t* const in = text.data();
        for (std::size_t i = 0; i < text.size(); ++i)
            out[i] = static_cast<char>(in[i]);
        return result;
    }
    into.resize(text.size() * 3);
    char* out = into.data();
    for (std::size_t at = 0; at < text.size();) {
        while (at + 4 <= text.size() && (units::load(text.data() + at) & units::everyUnit(0xFF80)) == 0)
            for (int i = 0; i < 4; ++i)
                *out++ = static_cast<char>(text[at++]);
        if (at == text.size())
            break;
        const char32_t c = units::codePointAt(text, at);
        at += units::unitCount(c);
        if (c < 0x80) {
            *out++ = static_cast<char>(c);
        } else if (c > 0xFFFF || !units::isSurrogate(static_cast<char16_t>(c))) {
            out = putBytes(out, c);
        } else if (isEscape(static_cast<char16_t>(c))) {
            result.hasEscapes = true;
            *out++ = static_cast<char>(c - escapeBase);
        } else {
            result.hasStrays = true;
            out = putBytes(out, replacementCharacter);
        }
    }
    into.resize(static_cast<std::size_t>(out - into.data()));
    return result;
}

} // namespace

void fromBytes(std::string_view bytes, std::u16string& into) {
    into.resize(bytes.size());
    char16_t* out = into.data();
    const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* const end = at + bytes.size();
    while (at < end) {
        while (end - at >= 8 && (units::load(at) & 0x8080808080808080ULL) == 0) {
            for (int i = 0; i < 8; ++i)
                out[i] = at[i];
            at += 8;
            out += 8;
        }
        while (at < end && *at < 0x80)
            *out++ = *at++;
        while (at < end && *at >= 0x80) {
            const Decoded decoded = decode(at, static_cast<std::size_t>(end - at));
            if (decoded.length > 0) {
                out = putUnits(out, decoded.codePoint);
                at += decoded.length;
            } else {
                *out++ = static_cast<char16_t>(escapeBase + *at++);
            }
        }
    }
    into.resize(static_cast<std::size_t>(out - into.data()));
}

std::u16string fromBytes(std::string_view bytes) {
    std::u16string result;
    fromBytes(bytes, result);
    return result;
}

bool toBytes(std::u16string_view text, std::string& into) {
    const Encoded encoded = encode(text, into);
    if (encoded.hasStrays)
        return false;
    return !encoded.hasEscapes || fromBytes(into) == text;
}

std::optional<std::string> toBytes(std::u16string_view text) {
    std::string result;
    if (!toBytes(text, result))
        return std::nullopt;
    return result;
}

std::string toUtf8(std::u16string_view text) {
    std::string result;
    encode(text, result);
    return result;
}

std::u16string fromUtf8(std::string_view utf8) { return fromBytes(utf8); }

bool isAscii(std::u16string_view text) { return units::allAscii(text); }

void replaceUnit(std::u16string& text, char16_t from, char16_t to) {
    for (char16_t& unit : text)
        unit = unit == from ? to : unit;
}

int compareByCodePoint(std::u16string_view a, std::u16string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    std::size_t at = 0;
    while (at < common && a[at] == b[at])
        ++at;
    if (at == common)
        return a.size() < b.size() ? -1 : a.size() > b.size();
    // Halves of a pair sort above all single units; a lone surrogate sorts as itself.
    const auto rank = [at](std::u16string_view text) -> char32_t {
        if (at > 0 && units::isLowSurrogate(text[at]) && units::isHighSurrogate(text[at - 1]))
            return 0x10000u + text[at];
        const char32_t c = units::codePointAt(text, at);
        return c > 0xFFFF ? 0x10000u + text[at] : c;
    };
    return rank(a) < rank(b) ? -1 : 1;
}

namespace {

std::optional<std::u16string> decodedUtf8(std::string_view bytes) {
    std::u16string text(bytes.size(), u'\0');
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t length = 0;
    u_strFromUTF8(text.data(), static_cast<std::int32_t>(text.size()), &length, bytes.data(),
                  static_cast<std::int32_t>(bytes.size()), &status);
    if (U_FAILURE(status))
        return std::nullopt;
    text.resize(static_cast<std::size_t>(length));
    return text;
}

} // namespace

std::u16string fromCharset(std::string_view bytes, const char* charset) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(charset, &status),
                                                                       &ucnv_close);
    std::u16string text(bytes.size(), u'\0');
    const std::int32_t length =
        ucnv_toUChars(converter.get(), text.data(), static_cast<std::int32_t>(text.size()), bytes.data(),
                      static_cast<std::int32_t>(bytes.size()), &status);
    text.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return text;
}

std::u16string fromUtf8OrMacRoman(std::string_view bytes) {
    std::optional<std::u16string> text = decodedUtf8(bytes);
    return text ? std::move(*text) : fromCharset(bytes, "macintosh");
}

namespace {

bool isAsciiByte(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// The end of the stretch of ASCII that begins at `at`.
std::size_t asciiEnd(std::string_view bytes, std::size_t at) {
    while (at + 8 <= bytes.size() && (units::load(bytes.data() + at) & 0x8080808080808080ULL) == 0)
        at += 8;
    while (at < bytes.size() && isAsciiByte(bytes[at]))
        ++at;
    return at;
}

} // namespace

bool hasEscape(std::u16string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i)
        if (units::isLowSurrogate(text[i]) && (i == 0 || !units::isHighSurrogate(text[i - 1])))
            return true;
    return false;
}

/// Long stretches of ASCII are passed over, and no more is decoded at once than stands between two of them.
bool isUtf8(std::string_view bytes) {
    std::u16string decoded;
    for (std::size_t at = asciiEnd(bytes, 0); at < bytes.size();) {
        const auto* const end = std::find_if(bytes.begin() + at, bytes.end(), isAsciiByte);
        const auto length = static_cast<std::size_t>(end - (bytes.begin() + at));
        fromBytes(bytes.substr(at, length), decoded);
        if (hasEscape(decoded))
            return false;
        at = asciiEnd(bytes, at + length);
    }
    return true;
}

} // namespace tavrin::text
