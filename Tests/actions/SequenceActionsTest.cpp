#include "actions/CatalogueFixture.h"
#include "support/text/Text.h"

#include <random>
#include <set>

namespace tavrin::test {

namespace {

using SequenceActions = CatalogueFixture;

// One step of -1 leads back, from any start, by any number of items.
TEST_F(SequenceActions, CountInLettersThereAndBack) {
    const auto action = catalogue.newActionForName("Produce alphabetical list");
    std::mt19937_64 random(5);
    for (int i = 0; i < 2000; ++i) {
        std::u16string start(1, static_cast<char16_t>(u'B' + random() % 25));
        for (auto length = random() % 12; length > 0; --length)
            start += static_cast<char16_t>(u'A' + random() % 26);
        const auto rank = 1 + static_cast<std::int32_t>(random() % 100000);
        action->setParameterList({{"startValue", u"aa" + text::lowercased(start)}, {"stepValue", 1}});
        const auto reached = run(*action, u"", rank);
        action->setParameterList({{"startValue", reached}, {"stepValue", -1}});
        EXPECT_EQ(run(*action, u"", rank), start) << text::toUtf8(reached);
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
