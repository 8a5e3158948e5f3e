#include "actions/CatalogueFixture.h"
#include "common/LogRecorder.h"
#include "support/text/RegularExpression.h"

namespace tavrin::test {

namespace {

using Columns = std::array<std::u16string, 6>;

class RegularExpressionActions : public CatalogueFixture {
  protected:
    std::optional<Columns> columns(const std::string& name, const PropertyDictionary& parameters,
                                   const std::u16string& of) {
        auto action = catalogue.newActionForName(name);
        action->setParameterList(parameters);
        InputContext input;
        input.currentName = of;
        OutputContext output;
        action->executeWithInputContext(input, output);
        return output.regex;
    }

    LogRecorder log;
};

TEST_F(RegularExpressionActions, PublishTheGroupsOfTheMatch) {
    const struct {
        std::u16string pattern;
        std::u16string replacement;
        std::u16string name;
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
    for (const auto& each : cases)
        EXPECT_EQ(columns("Reg Ex Substitution",
                          {{"searchPattern", each.pattern}, {"replacementTerm", each.replacement}},
                          each.name),
                  each.expected);
    EXPECT_EQ(columns("Reg Ex Replacement", {{"searchPattern", u"(a)"}}, u"a"), std::nullopt);
}

TEST_F(RegularExpressionActions, LogWhatFailed) {
    const auto logged = [&](const char* name, std::u16string pattern, std::u16string replacement) {
        const auto before = log.count("exception: U_");
        (void)columns(name, {{"searchPattern", pattern}, {"replacementTerm", replacement}}, u"ab");
        return log.count("exception: U_") - before;
    };
    for (const auto* name : {"Reg Ex Substitution", "Reg Ex Replacement"}) {
        EXPECT_EQ(logged(name, u"[", u"x"), 1U) << name;
        EXPECT_EQ(logged(name, u"", u"x"), 1U) << name;
        EXPECT_EQ(logged(name, u"a", u"x"), 0U) << name;
        EXPECT_EQ(logged(name, u"x", u"x"), 0U) << name;
    }
    EXPECT_EQ(logged("Reg Ex Replacement", u"a", u"$1"), 1U);
}

// Each group brings in what stands for the next, many times over.
TEST_F(RegularExpressionActions, KeepANameThatWouldGrowWithoutEnd) {
    std::u16string references;
    for (char16_t group = u'0'; group <= u'8'; ++group)
        for (int i = 0; i < 7; ++i)
            references += {u'\\', group, u'$', group};
    auto action = catalogue.newActionForName("Reg Ex Substitution");
    action->setParameterList({{"searchPattern", u"((((((((.*))))))))"},
                              {"replacementTerm", u"\\0$0\\1$1\\2$2\\3$3\\4$4\\5$5\\6$6\\7$7\\8$8"}});
    EXPECT_EQ(run(*action, references), references);
    EXPECT_EQ(run(*action, u"a"), std::u16string(18, u'a'));
}

} // namespace

} // namespace tavrin::test
