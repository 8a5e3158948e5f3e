#include "support/text/TextSearch.h"

#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <random>

namespace tavrin {

void PrintTo(const TextRange& range, std::ostream* out) { *out << range.location << ", " << range.length; }

namespace {

using Match = std::optional<TextRange>;
constexpr auto sensitive = CaseSensitivity::sensitive;
constexpr auto insensitive = CaseSensitivity::insensitive;
constexpr auto none = std::nullopt;

struct Case {
    std::u16string_view name;
    std::u16string_view text;
    CaseSensitivity sensitivity;
    Match first;
};

TEST(TextSearch, FindsEquivalentTextBetweenEdges) {
    const Case cases[] = {
        {u"abcabc", u"b", sensitive, TextRange{1, 1}},
        {u"abc", u"B", sensitive, none},
        {u"abc", u"B", insensitive, TextRange{1, 1}},
        {u"[x{", u"{", insensitive, TextRange{2, 1}},
        {u"abc", u"", sensitive, none},
        {u"", u"a", sensitive, none},
        {u"cafe\u0301.txt", u"é", sensitive, TextRange{3, 2}},
        {u"café.txt", u"e\u0301", sensitive, TextRange{3, 1}},
        {u"cafe\u0301", u"e", sensitive, none},
        {u"CAFÉ", u"e\u0301", insensitive, TextRange{3, 1}},
        {u"e\u0301", u"\u0301", sensitive, none},
        {u"q\u0307\u0323x", u"q\u0323\u0307", sensitive, TextRange{0, 3}},
        {u"a\u0323\u0302", u"a\u0323", sensitive, none},
        {u"Straße", u"ss", insensitive, TextRange{4, 1}},
        {u"Straße", u"ss", sensitive, none},
        {u"Strasse", u"ß", insensitive, TextRange{4, 2}},
        {u"ß", u"s", insensitive, none},
        {u"asße", u"sss", insensitive, TextRange{1, 2}},
        {u"İstanbul", u"i\u0307", insensitive, TextRange{0, 1}},
        {u"İstanbul", u"i", insensitive, none},
        {u"Οδός", u"Σ", insensitive, TextRange{3, 1}},
        {u"ᾳ", u"ΑΙ", insensitive, TextRange{0, 1}},
        {u"가나", u"\u1100\u1161", sensitive, TextRange{0, 1}},
        {u"\u1100\u1161\u1102\u1161", u"나", sensitive, TextRange{2, 2}},
        {u"각", u"가", sensitive, none},
        {u"\u1100\u1161\u11A8", u"가", sensitive, none},
        {u"👩\u200D💻", u"👩", sensitive, none},
        {u"x👩\u200D💻y", u"👩\u200D💻", sensitive, TextRange{1, 5}},
        {u"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", u"\U0001F1EA\U0001F1EB", sensitive, none},
        {u"\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", u"\U0001F1EB\U0001F1F7", sensitive, TextRange{4, 4}},
        {u"❤\uFE0F", u"❤", sensitive, none},
        {u"oﬁce", u"FI", insensitive, TextRange{1, 1}},
        {u"o\uFB03ce", u"office", insensitive, TextRange{0, 4}},
        {u"æ", u"ae", insensitive, none},
        {u"ПРИВЕТ", u"вет", insensitive, TextRange{3, 3}},
        {u"5\u212A", u"K", sensitive, TextRange{1, 1}},
        {u"\u212B", u"A\u030A", sensitive, TextRange{0, 1}},
        {u"Ａ", u"a", insensitive, none},
        {u"m²", u"2", insensitive, none},
        {u"co\u00ADop", u"coop", sensitive, none},
        {u"a\u200Bb", u"ab", sensitive, none},
        {u"a\r\nb", u"\n", sensitive, none},
        {u"a\r\nb", u"a\r\n", sensitive, TextRange{0, 3}},
        {u"a\rb\nc", u"\n", sensitive, TextRange{3, 1}},
        {u"caf\xDCE9.jpg", u"\xDCE9", sensitive, TextRange{3, 1}},
        {u"😀", u"\xD83D", sensitive, none},
        {u"\xD83Dz", u"\xD83D", insensitive, TextRange{0, 1}},
        {u"क\u093F", u"क", sensitive, none},
        {u"漢字.txt", u"字.TXT", insensitive, TextRange{1, 5}},
    };
    for (const auto& [name, text, sensitivity, first] : cases) {
        const TextSearch search(text, sensitivity);
        EXPECT_EQ(first, search.first(name)) << text::toUtf8(text) << " in " << text::toUtf8(name);
        EXPECT_EQ(first.has_value(), search.last(name, {0, name.size()}).has_value());
        EXPECT_EQ(first.has_value(), contains(name, text, sensitivity)) << text::toUtf8(name);
        EXPECT_EQ(text, search.text());
    }
}

TEST(TextSearch, ARangeBeyondTheNameIsCut) {
    const TextSearch search(u"c", sensitive);
    EXPECT_EQ(search.first(u"abc", {2, 99}), (TextRange{2, 1}));
    EXPECT_EQ(search.last(u"abc", {2, 99}), (TextRange{2, 1}));
    EXPECT_EQ(search.first(u"abc", {99, static_cast<std::size_t>(-1)}), none);
    EXPECT_EQ(search.last(u"abc", {99, static_cast<std::size_t>(-1)}), none);
}

std::u16string wholeKey(std::u16string_view text, CaseSensitivity sensitivity) {
    const std::u16string decomposed = text::decomposed(text);
    return sensitivity == sensitive ? decomposed : text::decomposed(text::caseFolded(decomposed));
}

/// The definition itself: every stretch between two edges is compared as a whole.
std::vector<TextRange> allMatches(std::u16string_view name, std::u16string_view text,
                                  CaseSensitivity sensitivity, TextRange range) {
    std::vector<std::size_t> edges;
    text::sequenceEdges(name, edges);
    std::vector<TextRange> matches;
    for (const std::size_t begin : edges)
        for (const std::size_t end : edges)
            if (begin >= range.location && begin < end && end <= range.end() &&
                wholeKey(name.substr(begin, end - begin), sensitivity) == wholeKey(text, sensitivity))
                matches.push_back({begin, end - begin});
    return matches;
}

TEST(TextSearch, AgreesWithItsDefinition) {
    // Characters whose key is one unit in form C, and characters that tear such a name out of the fast lane.
    static constexpr std::u16string_view plain =
        u"aAbé Éüß\u00B5\u00FF\u00AAK\u0131\u0149йЙЯґ漢あガが한가\u2019\u2026Σσςǰ";
    static constexpr std::u16string_view joining = u"aASsßKk\u212Aéeİi\u0307\u0301\u0323\u0345\u3099ΣςᾳΑιか\r"
                                                   u"\n각가\u1100\u1161\u11A8\u200D\xD83D\xDC69\xDCE9ﬁfǰ漢";
    std::mt19937 random(4711);
    std::u16string_view letters;
    const auto randomText = [&](std::size_t most) {
        std::u16string text(random() % (most + 1), u'\0');
        for (char16_t& unit : text)
            unit = letters[random() % letters.size()];
        return text;
    };
    int found = 0;
    for (int round = 0; round < 60'000; ++round) {
        const auto sensitivity = random() % 2 ? sensitive : insensitive;
        const auto alphabet = random() % 2 ? plain : joining;
        letters = alphabet.substr(random() % alphabet.size(), 2 + random() % 5);
        const TextSearch search(randomText(3), sensitivity);
        for (int names = 0; names < 3; ++names) {
            const std::u16string name = randomText(9);
            const std::size_t start = random() % (name.size() + 1);
            const TextRange range = random() % 2 ? TextRange{0, name.size()}
                                                 : TextRange{start, random() % (name.size() - start + 1)};
            const auto matches = allMatches(name, search.text(), sensitivity, range);
            const Match first = matches.empty() ? Match() : matches.front();
            const Match last = matches.empty() ? Match() : matches.back();
            ASSERT_EQ(first, search.first(name, range))
                << testing::PrintToString(name) << testing::PrintToString(search.text());
            ASSERT_EQ(last, search.last(name, range))
                << testing::PrintToString(name) << testing::PrintToString(search.text());
            found += !matches.empty();
        }
    }
    EXPECT_GT(found, 10'000);
}

} // namespace
} // namespace tavrin
