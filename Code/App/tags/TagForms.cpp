#include "tags/TagForms.h"

#include "support/text/KQStringUtilities.h"
#include "support/text/Text.h"
#include "support/text/TextUnits.h"

namespace tavrin {

namespace {

bool isApostrophe(char32_t c) { return c == U'\'' || c == U'\u2019'; }

void appendCapitalizedWord(std::u16string_view word, std::u16string& result) {
    if (word.empty())
        return;
    const auto first = word.substr(0, text::units::unitCount(text::units::codePointAt(word, 0)));
    // The rest takes its small letters from the whole word, since some look at what is in front of them.
    result.append(text::uppercased(first)).append(text::lowercased(word), text::lowercased(first).size());
}

} // namespace

std::u16string capitalized(std::u16string_view text) {
    std::u16string result;
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = text::units::codePointAt(text, at);
        const std::size_t end = at + text::units::unitCount(c);
        const bool isInWord = text::isLetter(c) || text::isDecimalDigit(c) || (isApostrophe(c) && at > start);
        if (!isInWord) {
            appendCapitalizedWord(text.substr(start, at - start), result);
            result.append(text, at, end - at);
            start = end;
        }
        at = end;
    }
    appendCapitalizedWord(text.substr(start), result);
    return result;
}

std::u16string sentenceCased(std::u16string_view text) {
    return *KQStringUtilities::sentenceCase(std::u16string(text));
}

std::u16string zeroPadded(std::u16string_view number) {
    std::u16string padded(number.size() == 1 ? 1 : 0, u'0');
    return padded.append(number);
}

} // namespace tavrin
