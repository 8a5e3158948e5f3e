#include "actions/CatalogueFixture.h"

namespace tavrin::test {

namespace {

using Columns = std::array<std::u16string, 6>;

using RegularExpressionActions = CatalogueFixture;

TEST_F(RegularExpressionActions, PublishTheGroupsOfTheMatch) {
    const struct {
        std::u16string pattern, replacement, name;
        Columns expected;
    } cases[] = {
        {u"(\\d+)-(\\d+)", u"\\2_$1", u"x12-34y", {u"12", u"34"}},
        {u"(a)(b)(c)(d)(e)(f)(g)", u"x", u"abcdefg", {u"a", u"b", u"c", u"d", u"e", u"f"}},
        {u"(a)(b)?", u"x", u"ac", {u"a", u""}},
        {u"(a)", u"$2", u"a", {u"a"}},            // the template names a missing group
        {u"(a)", u"", u"a", {u"a"}},              // the result is empty
        {u"(?=(b))", u"x", u"ab", {u"b"}},        // the match is empty
        {u"(x)", u"x", u"ab", {}},                // no match
        {u"(", u"x", u"ab", {}},                  // no pattern
        {u"(.+)", u"x", u"e\u0301", {u"\u00e9"}}, // in form C
    };
    for (const auto& each : cases) {
        InputContext input;
        OutputContext output;
        input.currentName = each.name;
        make("Reg Ex Replacement", {{"searchPattern", each.pattern}})->executeWithInputContext(input, output);
        EXPECT_EQ(output.regex, std::nullopt);
        make("Reg Ex Substitution", {{"searchPattern", each.pattern}, {"replacementTerm", each.replacement}})
            ->executeWithInputContext(input, output);
        EXPECT_EQ(output.regex, each.expected);
    }
}

// Each group brings in what stands for the next, many times over.
TEST_F(RegularExpressionActions, KeepANameThatWouldGrowWithoutEnd) {
    std::u16string references;
    for (char16_t group = u'0'; group <= u'8'; ++group)
        for (int i = 0; i < 7; ++i)
            references += {u'\\', group, u'$', group};
    const auto action =
        make("Reg Ex Substitution", {{"searchPattern", u"((((((((.*))))))))"},
                                     {"replacementTerm", u"\\0$0\\1$1\\2$2\\3$3\\4$4\\5$5\\6$6\\7$7\\8$8"}});
    EXPECT_EQ(run(*action, references), references);
    EXPECT_EQ(run(*action, u"a"), std::u16string(18, u'a'));
}

} // namespace

} // namespace tavrin::test
