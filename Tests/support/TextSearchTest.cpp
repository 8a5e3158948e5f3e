#include "support/text/TextSearch.h"

#include "common/Testing.h"
#include "support/text/RegularExpression.h"

#include <ctime>

namespace tavrin {

void PrintTo(const TextRange& range, std::ostream* out) { *out << range.location << ", " << range.length; }

namespace {

using Match = std::optional<TextRange>;
constexpr auto sensitive = CaseSensitivity::sensitive;
constexpr auto insensitive = CaseSensitivity::insensitive;

/// Each case is a name, in which ‹ and › enclose the first match, and behind a bar what is sought.
void expectMatches(CaseSensitivity sensitivity, const std::vector<std::u16string>& cases) {
    for (const std::u16string& each : cases) {
        const std::size_t bar = each.find(u'|');
        std::u16string name = each.substr(0, bar);
        const std::u16string text = each.substr(bar + 1);
        Match first;
        if (const std::size_t begin = name.find(u'‹'); begin != std::u16string::npos) {
            name.erase(begin, 1);
            first = {begin, name.find(u'›') - begin};
            name.erase(first->end(), 1);
        }
        const TextSearch search(text, sensitivity);
        EXPECT_EQ(first, search.first(name)) << text::toUtf8(each);
        EXPECT_EQ(first.has_value(), search.last(name, {0, name.size()}).has_value()) << text::toUtf8(each);
        EXPECT_EQ(first.has_value(), contains(name, text, sensitivity)) << text::toUtf8(each);
        EXPECT_EQ(text, search.text());
    }
}

TEST(TextSearch, FindsEquivalentTextBetweenEdges) {
    expectMatches(sensitive,
                  {u"a‹b›cabc|b", u"abc|B", u"abc|", u"|a", u"caf‹e\u0301›.txt|é", u"caf‹é›.txt|e\u0301",
                   u"cafe\u0301|e", u"e\u0301|\u0301", u"‹q\u0307\u0323›x|q\u0323\u0307",
                   u"a\u0323\u0302|a\u0323", u"Straße|ss", u"5‹\u212A›|K", u"‹\u212B›|A\u030A",
                   u"co\u00ADop|coop", u"a\u200Bb|ab", u"caf‹\xDCE9›.jpg|\xDCE9", u"😀|\xD83D"});
    expectMatches(sensitive, {u"‹가›나|\u1100\u1161", u"\u1100\u1161‹\u1102\u1161›|나", u"각|가",
                              u"\u1100\u1161\u11A8|가", u"👩\u200D💻|👩", u"x‹👩\u200D💻›y|👩\u200D💻", u"🇩🇪🇫🇷|🇪🇫",
                              u"🇩🇪‹🇫🇷›|🇫🇷", u"❤\uFE0F|❤", u"a\r\nb|\n", u"‹a\r\n›b|a\r\n", u"a\rb‹\n›c|\n",
                              u"क\u093F|क"});
    expectMatches(insensitive, {u"a‹b›c|B", u"[x‹{›|{", u"CAF‹É›|e\u0301", u"Stra‹ß›e|ss", u"Stra‹ss›e|ß",
                                u"ß|s", u"a‹sß›e|sss", u"‹İ›stanbul|i\u0307", u"İstanbul|i", u"Οδό‹ς›|Σ",
                                u"‹ᾳ›|ΑΙ", u"o‹ﬁ›ce|FI", u"‹o\uFB03ce›|office", u"æ|ae", u"ПРИ‹ВЕТ›|вет",
                                u"Ａ|a", u"m²|2", u"‹\xD83D›z|\xD83D", u"漢‹字.txt›|字.TXT"});
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
            if (begin >= range.location && begin < end && end - range.location <= range.length &&
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
            // A range that ends behind the name is cut.
            const std::size_t lengths[] = {random() % 10, name.size(), static_cast<std::size_t>(-1)};
            const TextRange range{random() % 2 ? 0 : random() % (name.size() + 2), lengths[random() % 3]};
            const auto matches = allMatches(name, search.text(), sensitivity, range);
            const Match first = matches.empty() ? Match() : matches.front();
            const Match last = matches.empty() ? Match() : matches.back();
            const std::string what = testing::PrintToString(name) + testing::PrintToString(search.text());
            ASSERT_EQ(first, search.first(name, range)) << what;
            ASSERT_EQ(last, search.last(name, range)) << what;
            found += !matches.empty();
        }
    }
    EXPECT_GT(found, 10'000);
}

using Texts = std::vector<std::u16string>;

Texts groups(RegularExpression& expression, std::u16string_view subject) {
    const auto found = expression.captureComponentsMatched(subject);
    return {found.begin(), found.end()};
}

/// What becomes of the subject, or why nothing does.
std::string replaced(RegularExpression& expression, std::u16string_view subject,
                     std::u16string_view replacement) {
    std::u16string result = u">";
    if (expression.replaceOccurrences(subject, replacement, result))
        return text::toUtf8(result);
    EXPECT_EQ(result, u">") << "a failure must leave the result alone";
    return expression.failure();
}

TEST(RegularExpression, GivesTheGroupsOfTheFirstMatch) {
    RegularExpression expression(u"(\\d)(x)?", sensitive);
    EXPECT_EQ(groups(expression, u"a1 2x"), (Texts{u"1", u"1", u""}));
    EXPECT_EQ(groups(expression, u"ab"), Texts{});
    EXPECT_EQ(expression.failure(), "");
    EXPECT_EQ(groups(expression, {}), Texts{});
    RegularExpression moved = std::move(expression);
    EXPECT_EQ(groups(moved, u"2x"), (Texts{u"2x", u"2", u"x"}));
    RegularExpression ofNothing(u"(?=(b))", sensitive);
    EXPECT_EQ(groups(ofNothing, u"ab"), (Texts{u"", u"b"})) << "an empty match has groups too";
    RegularExpression halves(u"(.)\\uD83D$", sensitive);
    EXPECT_EQ(groups(halves, u"\xD83D\xDE00\xD83D"), (Texts{u"\xD83D\xDE00\xD83D", u"\xD83D\xDE00"}));
}

TEST(RegularExpression, TellsWhyItFails) {
    RegularExpression empty;
    EXPECT_EQ(replaced(empty, u"a", u"b"), "U_ILLEGAL_ARGUMENT_ERROR");
    RegularExpression invalid(u"ab(c", sensitive);
    EXPECT_EQ(invalid.failure(), "U_REGEX_MISMATCHED_PAREN at character 4 of the pattern");
    EXPECT_EQ(groups(invalid, u"abc"), Texts{});
    EXPECT_EQ(replaced(invalid, u"abc", u""), invalid.failure());

    RegularExpression valid(u"(a)", sensitive);
    EXPECT_EQ(replaced(valid, u"ba", u"$2"), "U_INDEX_OUTOFBOUNDS_ERROR");
    EXPECT_EQ(replaced(valid, u"ba", u"${x}"), "U_REGEX_INVALID_CAPTURE_GROUP_NAME");
    EXPECT_EQ(replaced(valid, u"bb", u"$2"), ">bb") << "what is not used is not looked at";
    EXPECT_EQ(replaced(valid, u"ba", u""), ">b");
    EXPECT_EQ(replaced(valid, u"", u"x"), ">");
}

TEST(RegularExpression, RefusesWhatNoNameCanBe) {
    const std::u16string longest(RegularExpression::mostUnits, u'a');
    const std::u16string tooLong = longest + u'a';
    EXPECT_EQ(RegularExpression(tooLong, sensitive).failure(), "U_REGEX_PATTERN_TOO_BIG");
    RegularExpression expression(u"a+", sensitive);
    EXPECT_EQ(groups(expression, longest), Texts{longest});
    EXPECT_EQ(groups(expression, tooLong), Texts{});
    EXPECT_EQ(replaced(expression, tooLong, u""), "U_BUFFER_OVERFLOW_ERROR");
    EXPECT_EQ(replaced(expression, longest, u"b"), ">b");
    EXPECT_EQ(replaced(expression, longest, u"$0").size(), longest.size() + 1);
    EXPECT_EQ(replaced(expression, longest, u"$0$0"), "U_BUFFER_OVERFLOW_ERROR");
    EXPECT_EQ(replaced(expression, u"a", tooLong), "U_BUFFER_OVERFLOW_ERROR");
    EXPECT_EQ(RegularExpression(std::u16string(1000, u'('), sensitive).failure(),
              "U_REGEX_INTERNAL_ERROR at character 101 of the pattern");
}

// Without a bound the first of these names alone would take longer than the world is old, and with the bound
// of the first name for each the list would take minutes.
TEST(RegularExpression, CannotBeHungByNames) {
    const std::clock_t began = std::clock();
    RegularExpression expression(u"(a+)+$", sensitive);
    const auto hostile = std::u16string(200, u'a') + u'b';
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(replaced(expression, hostile, u"x"), "U_REGEX_STOPPED_BY_CALLER, the name took too long");
        EXPECT_EQ(groups(expression, hostile), Texts{});
        EXPECT_EQ(replaced(expression, std::u16string(200, u'a'), u"x"), ">x") << "others still match";
    }
    // Few steps, each of them long; and a search that is short for each of many matches.
    RegularExpression backReference(u"(.*)\\1x", CaseSensitivity::insensitive);
    EXPECT_EQ(groups(backReference, std::u16string(3000, u'a')), Texts{});
    EXPECT_NE(backReference.failure(), "");
    RegularExpression manyMatches(u"(?:a?){12}a{12}b|a", sensitive);
    EXPECT_NE(replaced(manyMatches, std::u16string(10000, u'a'), u"x").substr(0, 2), ">x");
    EXPECT_LT(std::clock() - began, 10 * CLOCKS_PER_SEC);
}

} // namespace
} // namespace tavrin
