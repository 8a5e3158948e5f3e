#include "store/sources/SourceItemManager.h"

#include "store/StoreTestData.h"
#include "store/contexts/StoreContext.h"
#include "store/queries/FilterManager.h"

#include <gtest/gtest.h>

#include <utility>

namespace tavrin::test {
namespace {

class SourceItemManagerTest : public testing::Test {
  protected:
    /// Puts a new file on the list and makes its row as reading does.
    RowId addAndRead(const std::string& name) {
        EXPECT_TRUE(manager.addSourceItem(folder.write(name)));
        RowId holder = context.nodeWithPath(folder.path());
        if (holder == noRow)
            holder = context.insertGhostNode(folder.path());
        const RowId row = context.insertFile(holder, name, true, false, 0);
        context.setSourceItemRead(folder.path(name), true, true);
        context.commit();
        return row;
    }
    /// The list in its order, with "+" behind what has been read.
    std::string list() {
        std::string names;
        for (const SourceItem& item : context.sourceItems())
            names += item.path.substr(folder.path().size() + 1) + (item.readInRoot ? "+ " : " ");
        return names;
    }

    TemporaryFolder folder;
    ItemStore store{ItemStore::Options{}};
    StoreContext context{store, StoreContext::MergePolicy::storeWins};
    SourceItemManager manager{[this]() -> StoreContext& { return context; }};
};

TEST_F(SourceItemManagerTest, KeepsItemsOutOfItems) {
    for (const char* name : {"a/b.txt", "a/sub/c.txt", "ab", "d/x"})
        folder.write(name);
    folder.makeFolder("e");
    folder.link("dangling", "nowhere");
    folder.link("linked", folder.path("e"));
    const std::pair<const char*, bool> cases[] = {
        {"a/sub/c.txt", true}, {"a", false},       {"a/sub", false}, {"a/b.txt", true},
        {"a/b.txt", false},    {"missing", false}, {"ab", true},     {"d", true},
        {"dangling", false},   {"linked", true},   {"e", true},
    };
    for (const auto& [name, isAdded] : cases)
        EXPECT_EQ(manager.addSourceItem(folder.path(name)), isAdded) << name;
    EXPECT_FALSE(manager.checkPathValidity(folder.path("d")));
    EXPECT_FALSE(manager.checkPathValidity(folder.path("d/deeper/still")));
    EXPECT_TRUE(manager.checkPathValidity(folder.path("a")));
    EXPECT_TRUE(manager.checkPathValidity("/"));
    EXPECT_EQ(list(), "a/sub/c.txt a/b.txt ab d linked e ");
}

TEST_F(SourceItemManagerTest, RemovesTheGhostWithItsLastChild) {
    const RowId one = addAndRead("one");
    const RowId two = addAndRead("two");
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
    addAndRead("one");
    addAndRead("two");
    EXPECT_TRUE(manager.changeTo(folder.path("one"), folder.write("three")));
    EXPECT_EQ(list(), "two+ three ");
    manager.resetCache();
    EXPECT_EQ(list(), "two three ");
}

TEST_F(SourceItemManagerTest, TheFilterIsThreeSettings) {
    const RowId ghost = context.insertGhostNode("/g");
    context.insertFile(ghost, "file", true, false, 0);
    const RowId sub = context.insertFile(ghost, "folder", true, true, 1);
    const RowId inner = context.insertFile(sub, "inner", false, false, 2);
    context.insertFile(sub, "inner folder", false, true, 3);
    context.commit();
    for (unsigned bits = 0; bits < 8; ++bits) {
        const bool files = (bits & 1) != 0;
        const bool folders = (bits & 2) != 0;
        const bool subfolders = (bits & 4) != 0;
        const ItemFilter filter{files, folders, subfolders};
        const auto countOf = [&](const Predicate& one) { return context.count(FetchEntity::file, one); };
        const unsigned ofEachKind = subfolders ? 2 : 1;
        EXPECT_EQ(countOf(FilterManager::currentFilterPredicate(filter)), ofEachKind * (files + folders));
        EXPECT_EQ(countOf(FilterManager::currentFilterPredicateIncludingAllFilesAndFolders(filter)),
                  2 * ofEachKind);
        EXPECT_EQ(filter.admits(context.row(sub)), folders);
        EXPECT_EQ(filter.admits(context.row(inner)), files && subfolders);
    }
}

} // namespace
} // namespace tavrin::test
