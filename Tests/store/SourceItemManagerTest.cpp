#include "store/sources/SourceItemManager.h"

#include "store/StoreTestData.h"
#include "store/contexts/StoreContext.h"
#include "store/queries/FilterManager.h"

#include <gtest/gtest.h>

#include <vector>

namespace tavrin::test {
namespace {

class SourceItemManagerTest : public testing::Test {
  protected:
    /// Makes the row of an item as reading does.
    RowId read(const std::string& path) {
        const std::size_t slash = path.find_last_of('/');
        const std::string parent = path.substr(0, slash);
        RowId holder = context.nodeWithPath(parent);
        if (holder == noRow)
            holder = context.insertGhostNode(parent);
        const RowId row = context.insertFile(holder, path.substr(slash + 1), true, false, 0);
        context.commit();
        return row;
    }

    TemporaryFolder folder;
    ItemStore store{ItemStore::Options{}};
    StoreContext context{store, StoreContext::MergePolicy::storeWins};
    SourceItemManager manager{[this]() -> StoreContext& { return context; }};
};

TEST_F(SourceItemManagerTest, KeepsItemsOutOfItems) {
    folder.write("a/b.txt");
    folder.write("a/sub/c.txt");
    folder.write("ab");
    folder.write("d/x");
    folder.makeFolder("e");
    folder.link("dangling", "nowhere");
    folder.link("linked", folder.path("e"));
    struct Case {
        std::string name;
        bool isAdded;
    };
    const std::vector<Case> cases = {
        {"a/sub/c.txt", true}, {"a", false},       {"a/sub", false}, {"a/b.txt", true},
        {"a/b.txt", false},    {"missing", false}, {"ab", true},     {"d", true},
        {"dangling", false},   {"linked", true},   {"e", true},
    };
    for (const Case& one : cases)
        EXPECT_EQ(manager.addSourceItem(folder.path(one.name)), one.isAdded) << one.name;
    EXPECT_FALSE(manager.checkPathValidity(folder.path("d")));
    EXPECT_FALSE(manager.checkPathValidity(folder.path("d/deeper/still")));
    EXPECT_TRUE(manager.checkPathValidity(folder.path("a")));
    EXPECT_TRUE(manager.checkPathValidity("/"));
    std::vector<std::string> paths;
    for (const SourceItem& item : context.sourceItems())
        paths.push_back(item.path.substr(folder.path().size() + 1));
    EXPECT_EQ(paths, (std::vector<std::string>{"a/sub/c.txt", "a/b.txt", "ab", "d", "linked", "e"}));
}

TEST_F(SourceItemManagerTest, RemovesTheGhostWithItsLastChild) {
    for (const char* name : {"one", "two"})
        ASSERT_TRUE(manager.addSourceItem(folder.write(name)));
    const RowId one = read(folder.path("one"));
    const RowId two = read(folder.path("two"));
    const RowId ghost = context.row(one).parent;
    manager.removeItem(folder.path("not on the list"));
    manager.removeItem(folder.path("one"));
    EXPECT_FALSE(context.exists(one));
    EXPECT_TRUE(context.exists(ghost));
    manager.removeItem(folder.path("two"));
    EXPECT_FALSE(context.exists(two));
    EXPECT_FALSE(context.exists(ghost));
    EXPECT_TRUE(manager.isEmpty());
}

TEST_F(SourceItemManagerTest, AChangedItemGoesToTheEndAndIsUnread) {
    for (const char* name : {"one", "two"}) {
        ASSERT_TRUE(manager.addSourceItem(folder.write(name)));
        read(folder.path(name));
        context.setSourceItemRead(folder.path(name), true, true);
    }
    context.commit();
    folder.write("three");
    EXPECT_TRUE(manager.changeTo(folder.path("one"), folder.path("three")));
    const std::vector<SourceItem> items = context.sourceItems();
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].path, folder.path("two"));
    EXPECT_TRUE(items[0].readInRoot);
    EXPECT_EQ(items[1].path, folder.path("three"));
    EXPECT_FALSE(items[1].readInRoot);
    manager.resetCache();
    EXPECT_FALSE(context.sourceItems()[0].readInRoot);
}

TEST_F(SourceItemManagerTest, TheFilterIsThreeSettings) {
    const RowId ghost = context.insertGhostNode("/g");
    context.insertFile(ghost, "file", true, false, 0);
    const RowId sub = context.insertFile(ghost, "folder", true, true, 1);
    const RowId inner = context.insertFile(sub, "inner", false, false, 2);
    context.insertFile(sub, "inner folder", false, true, 3);
    context.commit();
    for (const unsigned bits : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U}) {
        const ItemFilter filter{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0};
        const auto countOf = [&](const Predicate& one) { return context.count(FetchEntity::file, one); };
        const std::size_t ofEachKind = filter.shouldProcessSubfolders ? 2 : 1;
        EXPECT_EQ(countOf(FilterManager::currentFilterPredicate(filter)),
                  (filter.shouldProcessFiles ? ofEachKind : 0) +
                      (filter.shouldProcessFolders ? ofEachKind : 0));
        EXPECT_EQ(countOf(FilterManager::currentFilterPredicateIncludingAllFilesAndFolders(filter)),
                  2 * ofEachKind);
        EXPECT_EQ(filter.admits(context.row(sub)), filter.shouldProcessFolders);
        EXPECT_EQ(filter.admits(context.row(inner)),
                  filter.shouldProcessFiles && filter.shouldProcessSubfolders);
    }
}

} // namespace
} // namespace tavrin::test
