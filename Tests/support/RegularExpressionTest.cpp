#include "support/text/RegularExpression.h"

#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <ctime>
#include <vector>

namespace tavrin {

namespace {

constexpr auto sensitive = CaseSensitivity::sensitive;

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

double processorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

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
    const auto began = processorSeconds();
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
    EXPECT_LT(processorSeconds() - began, 10);
}

} // namespace

} // namespace tavrin
