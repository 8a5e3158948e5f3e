#include "actions/CatalogueFixture.h"
#include "support/text/Text.h"

#include <random>

namespace tavrin::test {

namespace {

using SequenceActions = CatalogueFixture;

// One step of -1 leads back, from any start, by any number of items.
TEST_F(SequenceActions, CountInLettersThereAndBack) {
    const auto action = make("Produce alphabetical list");
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

TEST_F(SequenceActions, BoundTheWidth) {
    const std::tuple<const char*, std::int32_t, std::size_t> cases[] = {
        {"Produce numbered list", 2147483647, 1024},
        {"Produce numbered list", -2147483647 - 1, 1024},
        {"Produce alphabetical list", 2147483647, 1024},
        {"Produce alphabetical list", -2147483647 - 1, 1}};
    for (const auto& [action, padding, width] : cases)
        EXPECT_EQ(run(*make(action, {{"prefix", u""}, {"padding", padding}}), u"a").size(), width);
}

} // namespace

} // namespace tavrin::test
