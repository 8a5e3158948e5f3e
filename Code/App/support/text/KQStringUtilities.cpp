#include "support/text/KQStringUtilities.h"

#include "support/text/Text.h"

namespace tavrin {
namespace {

constexpr std::size_t numberWidth = 32;

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

void appendNumber(std::u16string& to, std::int32_t number) {
    to.append(numberWidth, u'0');
    for (std::size_t at = to.size(); number > 0; number /= 10)
        to[--at] = static_cast<char16_t>(u'0' + number % 10);
}

std::u16string withUnit(std::u16string_view text, char16_t from, char16_t to) {
    std::u16string result(text);
    text::replaceUnit(result, from, to);
    return result;
}

} // namespace

std::vector<std::u16string> KQStringUtilities::characterArrayFrom(std::u16string_view text) {
    std::vector<std::u16string> characters;
    characters.reserve(text.size());
    for (const char16_t unit : text)
        characters.emplace_back(1, unit);
    return characters;
}

std::u16string KQStringUtilities::replaceNilWithEmptyString(const std::optional<std::u16string>& text) {
    return text.value_or(std::u16string());
}

std::optional<std::u16string> KQStringUtilities::sentenceCase(const std::optional<std::u16string>& text) {
    if (!text || text->empty())
        return text;
    const std::u16string_view all = *text;
    return text::uppercased(all.substr(0, 1)) + text::lowercased(all.substr(1));
}

std::optional<std::u16string> KQStringUtilities::romanNumeral(int) { return std::nullopt; }

std::u16string KQStringUtilities::expandNumberBlocks(std::u16string_view text) {
    std::u16string result;
    result.reserve(text.size() + 2 * numberWidth);
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at;
        while (end < text.size() && isDigit(text[end]) == isDigit(text[at]))
            ++end;
        const std::u16string_view run = text.substr(at, end - at);
        if (isDigit(text[at]))
            appendNumber(result, text::intValue(run));
        else
            result.append(run);
        at = end;
    }
    return result;
}

std::u16string KQStringUtilities::replaceColonWithForwardSlash(std::u16string_view text) {
    return withUnit(text, u':', u'/');
}

std::u16string KQStringUtilities::replaceForwardSlashWithColon(std::u16string_view text) {
    return withUnit(text, u'/', u':');
}

std::vector<std::u16string> KQStringUtilities::decomposeIntoStringArray(std::u16string_view text) {
    const auto sequences = text::composedSequences(text);
    return {sequences.begin(), sequences.end()};
}

} // namespace tavrin
