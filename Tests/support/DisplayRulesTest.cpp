#include "support/application/ApplicationNameSubstitution.h"
#include "support/application/StackedViewLayout.h"
#include "support/values/ValueTransformers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin::test {
namespace {

TEST(DisplayRulesTest, TheSecondEditionHasItsOwnName) {
    using Formatter = ApplicationNameSubstitutionStringFormatter;
    EXPECT_EQ(Formatter::stringForObjectValue(u"Tavrin 8, TavrinTavrin 9"), u"Morvane 9, MorvaneMorvane 9");
    EXPECT_FALSE(Formatter::stringForObjectValue(std::nullopt));
}

TEST(DisplayRulesTest, ListsAreEmptySingleOrMore) {
    struct Case {
        std::optional<std::size_t> count;
        bool isEmpty, isNotEmpty, isOne, isMore;
    };
    for (const Case& each :
         {Case{std::nullopt, true, false, false, false}, Case{0, true, false, false, false},
          Case{1, false, true, true, false}, Case{2, false, true, false, true}}) {
        EXPECT_EQ(ArrayIsEmptyTransformer::transformedValue(each.count), each.isEmpty);
        EXPECT_EQ(ArrayIsNotEmptyTransformer::transformedValue(each.count), each.isNotEmpty);
        EXPECT_EQ(ExactlyOneItemTransformer::transformedValue(each.count), each.isOne);
        EXPECT_EQ(MoreThanOneObjectInTableTransformer::transformedValue(each.count), each.isMore);
    }
    EXPECT_STREQ(MultiStepDrawerTransformer::transformedValue(true), "Hide Multi-Step Drawer");
    EXPECT_STREQ(MultiStepDrawerTransformer::transformedValue(false), "Show Multi-Step Drawer");
    EXPECT_STREQ(MultiStepDrawerTransformer::transformedValue(std::nullopt), "Show Multi-Step Drawer");
}

TEST(DisplayRulesTest, TheFlexibleViewTakesWhatIsFree) {
    struct Case {
        std::vector<double> heights;
        std::optional<std::size_t> flexi;
        std::int64_t preferred;
        double visible;
        double height;      ///< of the stack
        double flexiHeight; ///< 0 without one
    };
    const Case cases[] = {
        {{}, std::nullopt, 0, 50, 50, 0},
        {{20, 30}, std::nullopt, 0, 40, 50, 0},
        {{20, 30}, std::nullopt, 0, 90, 90, 0},
        {{20, 1, 30}, 1, 100, 120, 150, 100},   // no extra
        {{20, 999, 30}, 1, 100, 150, 150, 100}, // the frame of the flexible view does not count
        {{20, 1, 30}, 1, 100, 158, 158, 108},   // an extra of 8
        {{20, 1, 30}, 1, 100, 159, 159, 101},   // of 9
        {{20, 1, 30}, 1, 100, 250, 250, 192},
        {{20.9, 1}, 1, 10, 39.8, 39.8, 11}, // 39 less 30: whole points, an extra of 9
        {{20.2, 1}, 1, 10, 38.9, 38.9, 18}, // 38 less 30
    };
    for (const Case& each : cases) {
        const auto layout = StackedViewLayout::of(each.heights, each.flexi, each.preferred, each.visible);
        EXPECT_DOUBLE_EQ(layout.height, each.height) << each.visible;
        ASSERT_EQ(layout.places.size(), each.heights.size());
        double top = 0;
        for (std::size_t i = 0; i < each.heights.size(); ++i) {
            EXPECT_DOUBLE_EQ(layout.places[i].top, top) << each.visible;
            EXPECT_DOUBLE_EQ(layout.places[i].height, each.flexi == i ? each.flexiHeight : each.heights[i])
                << each.visible;
            top += layout.places[i].height;
        }
    }
}

} // namespace
} // namespace tavrin::test
