#include "common/FailingVfs.h"
#include "store/StoreContext.h"
#include "store/StoreError.h"
#include "store/StoreTestData.h"

#include <fmt/core.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tavrin::test {
namespace {

constexpr int manyRows = 20000;

/// Marks and renames all rows in batches, as a stage does; the number of failed commits.
int renameAll(StoreContext& context, PassMarker marker, const std::u16string& suffix) {
    int failures = 0;
    const FetchRequest open{FetchEntity::file, Predicate::notMarked(marker), {}, 1000};
    for (int guard = 0; guard < 1000; ++guard) {
        const std::vector<RowId> batch = context.fetch(open);
        if (batch.empty())
            return failures;
        for (const RowId row : batch) {
            context.setFinalName(row, context.name(row) + suffix);
            context.change(row).diff = true;
            context.setStageFlag(row, marker);
        }
        if (context.commitAndFlush())
            ++failures;
        else
            context.refault();
    }
    ADD_FAILURE() << "the pass does not end";
    return failures;
}

TEST(ItemStoreTest, EachFailingWriteLeavesEverythingStagedAndNothingLost) {
    FailingVfs vfs;
    TemporaryFolder folder;
    int writes = 1;
    for (int k = 1; k <= writes; k += 1 + writes / 40) {
        ItemStore::Options options = optionsFor(Backing::tightFile, folder.path());
        options.vfs = vfs.name();
        vfs.failWrite(0);
        ItemStore store(options);
        StoreContext context(store, StoreContext::MergePolicy::contextWins);
        const RowId ghost = fillFolder(context, manyRows);
        vfs.failWrite(k);
        renameAll(context, 3, u"!");
        if (k == 1)
            writes = std::max(vfs.writes(), 2);
        vfs.failWrite(0);
        ASSERT_EQ(context.commitAndFlush(), std::nullopt) << "write " << k;
        context.reset();
        EXPECT_EQ(context.count(FetchEntity::file, Predicate::isTrue(NodeKey::diff)), std::size_t{manyRows});
        const std::vector<RowId> rows = context.children(ghost);
        ASSERT_EQ(rows.size(), std::size_t{manyRows});
        for (std::size_t i = 0; i < rows.size(); i += 997)
            EXPECT_EQ(context.finalName(rows[i]), context.name(rows[i]) + u"!") << "write " << k;
    }
}

TEST(ItemStoreTest, EachFailingReadThrowsAndTheSwitchIntoMemoryGoesOn) {
    FailingVfs vfs;
    TemporaryFolder folder;
    bool hasThrown = false;
    for (const int k : {1, 2, 3, 5, 8, 13, 21, 34}) {
        ItemStore::Options options = optionsFor(Backing::tightFile, folder.path());
        options.vfs = vfs.name();
        vfs.failRead(0);
        ItemStore store(options);
        StoreContext context(store, StoreContext::MergePolicy::contextWins);
        context.insertSourceItem("/tree", true);
        fillFolder(context, manyRows);
        vfs.failRead(k, true);
        try {
            renameAll(context, 3, u"!");
        } catch (const StoreError&) {
            hasThrown = true;
        }
        context.reset();
        ASSERT_TRUE(store.migrateToMemory());
        EXPECT_FALSE(store.migrateToMemory());
        while (context.deleteNodes(2000) > 0)
            ASSERT_EQ(context.commit(), std::nullopt);
        EXPECT_EQ(context.sourceItemCount(), 1u);
        const RowId ghost = fillFolder(context, 5000);
        EXPECT_EQ(renameAll(context, 4, u"?"), 0);
        EXPECT_EQ(context.finalName(context.children(ghost).back()), u"file 5000.txt?");
    }
    EXPECT_TRUE(hasThrown) << "the budget was never exceeded, so nothing was tested";
}

TEST(ItemStoreTest, TwoInstancesInOneFolderNeverMeet) {
    TemporaryFolder folder;
    ItemStore first(optionsFor(Backing::tightFile, folder.path()));
    StoreContext firstContext(first, StoreContext::MergePolicy::contextWins);
    const RowId firstGhost = fillFolder(firstContext, manyRows, "/first");
    ASSERT_EQ(firstContext.commitAndFlush(), std::nullopt);
    ItemStore second(optionsFor(Backing::tightFile, folder.path()));
    StoreContext secondContext(second, StoreContext::MergePolicy::contextWins);
    const RowId secondGhost = fillFolder(secondContext, manyRows, "/second");
    renameAll(firstContext, 1, u".1");
    renameAll(secondContext, 1, u".2");
    EXPECT_EQ(firstContext.finalName(firstContext.children(firstGhost)[10]), u"file 11.txt.1");
    EXPECT_EQ(secondContext.finalName(secondContext.children(secondGhost)[10]), u"file 11.txt.2");
    EXPECT_EQ(folder.tree().size(), 1u) << "one store file and nothing else";
}

TEST(ItemStoreTest, AStartSweepsWhatDeadProcessesLeft) {
    TemporaryFolder folder;
    const pid_t dead = ::fork();
    if (dead == 0)
        ::_exit(0);
    ASSERT_EQ(::waitpid(dead, nullptr, 0), dead);
    const std::string ofDead = fmt::format("tvrn9.db.{}.00c0ffee", dead);
    const std::string ofLiving = fmt::format("tvrn9.db.{}.00c0ffee", ::getpid());
    folder.write(ofDead, "x");
    folder.write(ofLiving, "x");
    folder.write("tvrn9.db", "left by a crash, and no database");
    folder.write("tvrn9.db.note", "the user's own");
    ItemStore store(optionsFor(Backing::file, folder.path()));
    EXPECT_EQ(store.openError(), std::nullopt);
    EXPECT_FALSE(folder.kind(ofDead));
    EXPECT_TRUE(folder.kind(ofLiving));
    EXPECT_TRUE(folder.kind("tvrn9.db.note"));
    StoreContext context(store, StoreContext::MergePolicy::contextWins);
    EXPECT_EQ(context.count(FetchEntity::node, Predicate::always()), 0u);
}

TEST(ItemStoreTest, AStoreWithoutAFileSaysSoUntilItIsInMemory) {
    TemporaryFolder folder;
    ItemStore store(optionsFor(Backing::file, folder.path("not there")));
    ASSERT_TRUE(store.openError());
    EXPECT_NE(store.openError()->find("No such file"), std::string::npos);
    StoreContext context(store, StoreContext::MergePolicy::contextWins);
    context.insertSourceItem("/a", false);
    EXPECT_TRUE(context.commit());
    EXPECT_EQ(context.sourceItemCount(), 1u) << "the change stays staged";
    EXPECT_THROW(context.fetch({}), StoreError);
    EXPECT_TRUE(store.migrateToMemory());
    EXPECT_EQ(context.commit(), std::nullopt);
    EXPECT_EQ(context.fetch({}).size(), 0u);
    EXPECT_EQ(context.sourceItemCount(), 1u);
}

} // namespace
} // namespace tavrin::test
