#include "actions/CategoryManager.h"

#include "CatalogueFixture.h"
#include "actions/PListIndexValueTranslater.h"
#include "common/TemporaryFolder.h"
#include "platform/propertylists/PropertyList.h"

#include <cstdlib>

namespace tavrin::test {
namespace {

class CategoryManagerTest : public CatalogueFixture {};

TEST_F(CategoryManagerTest, EveryActionIsFoundAgainThroughItsCategory) {
    const std::vector<std::string>& names = catalogue.nameArray();
    for (std::int32_t index = 0; index < catalogue.count(); ++index) {
        if (names[static_cast<std::size_t>(index)].empty())
            continue;
        const auto category = CategoryTransformer::forward(index);
        const auto place = CategoryItemTransformer::forward(index);
        const auto labels = CategoryItemNamesArrayTransformer::forward(index);
        ASSERT_TRUE(category && place && labels) << index;
        EXPECT_EQ(*CategoryTransformer::reverse(category) + *place, index);
        EXPECT_EQ(labels->at(static_cast<std::size_t>(*place)),
                  catalogue.popUpMenuItems()[static_cast<std::size_t>(index)]);
        EXPECT_EQ(CategoryItemTransformer::reverse(index), category);
    }
}

TEST_F(CategoryManagerTest, NothingAndTheUnknownGiveNothing) {
    for (const std::optional<std::int32_t> index :
         {std::optional<std::int32_t>(), std::optional(-1), std::optional(100000)}) {
        EXPECT_EQ(CategoryTransformer::forward(index), std::nullopt);
        EXPECT_EQ(CategoryTransformer::reverse(index), std::nullopt);
        EXPECT_EQ(CategoryItemTransformer::forward(index), std::nullopt);
        EXPECT_EQ(CategoryItemNamesArrayTransformer::forward(index), std::nullopt);
    }
}

TEST(PListIndexValueTranslater, FindsTheSameEntryInTheOtherList) {
    const TemporaryFolder folder;
    folder.write("old.plist", PropertyList::toXml(PropertyArray{u"a", u"b", u"gone"}));
    folder.write("new.plist", PropertyList::toXml(PropertyArray{u"b", u"x", u"a"}));
    ::setenv("TAVRIN_RESOURCES", folder.path().c_str(), 1);
    struct Case {
        std::int32_t index;
        std::string to;
        std::int32_t expected;
    };
    for (const Case& one : {Case{0, "new", 2},
                            {1, "new", 0},
                            {2, "new", -1},
                            {3, "new", -1},
                            {-1, "new", -1},
                            {0, "missing", -1}})
        EXPECT_EQ(PListIndexValueTranslater::translateIndex(one.index, "old", one.to), one.expected);
    ::unsetenv("TAVRIN_RESOURCES");
}

} // namespace
} // namespace tavrin::test
