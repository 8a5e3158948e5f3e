#include "actions/CatalogueFixture.h"
#include "actions/sequence/AlphabeticalListBasedAction.h"
#include "support/text/Text.h"

#include <random>
#include <set>

namespace tavrin::test {

namespace {

using SequenceActions = CatalogueFixture;

TEST_F(SequenceActions, CountInLetters) {
    using Letters = AlphabeticalListBasedAction;
    std::mt19937_64 random(5);
    for (int i = 0; i < 10000; ++i) {
        const auto value = static_cast<std::int64_t>(random() >> (1 + random() % 63));
        const auto letters = Letters::uNumToAlpha(value);
        EXPECT_EQ(Letters::uAlphaToNum(letters), value);
        EXPECT_EQ(Letters::uAlphaToNum(u"AAA" + text::lowercased(letters)), value);
    }
}

TEST_F(SequenceActions, CheckAStartValueInLetters) {
    const auto action = catalogue.newActionForName("Add alphabetical sequence to end");
    const struct {
        PropertyValue proposed;
        std::u16string stored;
    } cases[] = {{u"aa", u"A"},  {u"a1", u"A"},      {u"", u"A"},
                 {u"bc", u"BC"}, {u"b~", u"BZ"},     {u"abcdefg", u"BCDEF"},
                 {12, u"A"},     {u"\u00df", u"SS"}, {u"zzzzzzz", u"ZZZZZZ"}};
    for (const auto& each : cases)
        EXPECT_EQ(action->validatedValue(each.proposed, "startValue"), PropertyValue(each.stored));
    EXPECT_EQ(action->validatedValue(u"aa", "suffix"), PropertyValue(u"aa"));
}

TEST_F(SequenceActions, GiveOneTextWithoutAStep) {
    for (const auto* family : {"number", "roman numeral", "alphabetical sequence"}) {
        auto action = catalogue.newActionForName(std::string("Add ") + family + " to start");
        action->setParameterList({{"stepValue", 0}});
        std::set<std::u16string> texts;
        for (const std::int32_t rank : {1, 2, 77, 2147483647, -2147483647 - 1})
            texts.insert(run(*action, u"n", rank));
        EXPECT_EQ(texts.size(), 1U) << family;
    }
}

TEST_F(SequenceActions, BoundTheWidth) {
    const struct {
        const char* action;
        std::int32_t padding;
        std::size_t width;
    } cases[] = {{"Produce numbered list", 2147483647, 1024},
                 {"Produce numbered list", -2147483647 - 1, 1024},
                 {"Produce alphabetical list", 2147483647, 1024},
                 {"Produce alphabetical list", -2147483647 - 1, 1}};
    for (const auto& each : cases) {
        auto action = catalogue.newActionForName(each.action);
        action->setParameterList({{"prefix", u""}, {"padding", each.padding}});
        EXPECT_EQ(run(*action, u"a").size(), each.width) << each.action << each.padding;
    }
}

} // namespace

} // namespace tavrin::test
