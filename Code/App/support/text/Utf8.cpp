#include "support/text/Utf8.h"

#include "support/text/Text.h"
#include "support/text/TextUnits.h"

#include <algorithm>
#include <string>

namespace tavrin::text {

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
