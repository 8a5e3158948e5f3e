
#include "support/text/KQStringUtilities.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>
#include <unicode/ubrk.h>

#include <random>

namespace tavrin::text {
namespace {

using Edges = std::vector<std::size_t>;

/// The rules without any shortcut.
class Oracle {
  public:
    ~Oracle() { ubrk_close(iterator); }
    Edges edges(std::u16string_view text) {
        ubrk_setText(iterator, text.data(), static_cast<std::int32_t>(text.size()), &status);
        Edges result = {0};
        for (auto edge = ubrk_next(iterator); edge != UBRK_DONE; edge = ubrk_next(iterator))
            result.push_back(static_cast<std::size_t>(edge));
        EXPECT_TRUE(U_SUCCESS(status));
        return result;
    }

  private:
    UErrorCode status = U_ZERO_ERROR;
    UBreakIterator* iterator = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status);
};

Edges edgesStepByStep(std::u16string_view text) {
    Edges result = {0};
    while (result.back() < text.size())
        result.push_back(composedSequenceEnd(text, result.back()));
    return result;
}

TEST(TextSequences, ShortcutsAgreeWithTheRules) {
    // At least one character of every class of the rules, and the neighbours of the shortcuts' limits.
    static constexpr std::u32string_view alphabet =
        U"ab \r\n\x01\x7F\u0085\u00AD\u00A9é\u02FF\u0300\u0323\u034F\u036F\u0370й"
        U"\u0483\u05D0\u05B0\u0600\u0E33\u0E01\u0915\u0937\u093F\u094D\u093C\u0D4E\u1100\u1161\u11A8\uD7B0"
        U"\uD7CB한가각"
        U"\u200B\u200C\u200D\u2028\u20E3\u2764\uFE0F漢\u302E\uFF9E\U0001F1E6\U0001F1F8\U0001F44D\U0001F3FD"
        U"\U0001F469\U0001F4BB\U00011070\U000110BD\U000E0041";
    std::mt19937 random(99);
    Oracle oracle;
    Edges found;
    for (int round = 0; round < 100'000; ++round) {
        std::u16string text;
        for (auto count = random() % 10; count > 0; --count) {
            const char32_t c = alphabet[random() % alphabet.size()];
            text += random() % 20 == 0
                        ? std::u16string(1, random() % 2 ? u'\xDCE9' : u'\xD83D')
                        : fromUtf8(toUtf8(c < 0x10000
                                              ? std::u16string(1, static_cast<char16_t>(c))
                                              : std::u16string{static_cast<char16_t>(0xD7C0 + (c >> 10)),
                                                               static_cast<char16_t>(0xDC00 + (c & 0x3FF))}));
        }
        sequenceEdges(text, found);
        ASSERT_EQ(oracle.edges(text), found) << testing::PrintToString(text);
        ASSERT_EQ(found, edgesStepByStep(text)) << testing::PrintToString(text);
    }
}

TEST(TextSequences, AreWhatAReaderCallsACharacter) {
    const std::vector<std::u16string> cases[] = {
        {},
        {u"a", u"b"},
        {u"e\u0301", u"x"},
        {u"a\u0323\u0302", u"b"},
        {u"\r\n", u"\n", u"\r", u"x"},
        {u"👩\u200D💻", u"👩"},
        {u"👍\U0001F3FD", u"!"},
        {u"\U0001F1E9\U0001F1EA", u"\U0001F1EB\U0001F1F7", u"\U0001F1EB"},
        {u"\u1100\u1161\u11A8", u"\u1100\u1161"},
        {u"한", u"글"},
        {u"1\uFE0F\u20E3", u"2"},
        {u"\u0300", u"a"},
        {u"\xD83D", u"a", u"\xDCE9", u"\xDCE8"},
    };
    for (const auto& sequences : cases) {
        std::u16string text;
        for (const std::u16string& sequence : sequences)
            text += sequence;
        EXPECT_EQ(sequences, KQStringUtilities::decomposeIntoStringArray(text)) << toUtf8(text);
        EXPECT_EQ(sequences.empty() ? u"" : sequences.front(), firstComposedSequence(text));
    }
}

} // namespace
} // namespace tavrin::text
