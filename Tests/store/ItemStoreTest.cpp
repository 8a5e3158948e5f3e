#include "common/FailingVfs.h"
#include "common/Testing.h"
#include "store/StoreTestData.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/TextRegion.h"

namespace tavrin::test {
namespace {

constexpr int manyRows = 20000;

/// Renames all rows in batches, as a stage does; none is missing then.
void renameAll(StoreContext& context, RowId ghost, const std::u16string& suffix) {
    const auto data = [](RowId row) {
        return std::vector<std::uint8_t>(100, static_cast<std::uint8_t>(row));
    };
    const std::vector<RowId> rows = context.children(ghost);
    ASSERT_EQ(rows.size(), std::size_t{manyRows});
    for (std::size_t i = 0; i < rows.size(); ++i) {
        context.setFinalName(rows[i], context.name(rows[i]) + suffix);
        context.change(rows[i]).diff = true;
        context.setRegexColumns(rows[i], {context.name(rows[i]), suffix, u"", u"", u"", u""});
        context.setTagData(rows[i], {data(rows[i])});
        if (i % 1000 == 999) {
            context.commit();
            context.refault();
        }
    }
    context.reset();
    EXPECT_EQ(context.count(FetchEntity::file, Predicate::isTrue(NodeKey::diff)), std::size_t{manyRows});
    for (std::size_t i = 0; i < rows.size(); i += 97) {
        const std::u16string name = context.name(rows[i]);
        EXPECT_EQ(context.finalName(rows[i]), name + suffix);
        const auto columns = context.regexColumns(rows[i]).value();
        EXPECT_EQ(columns[0] + columns[1] + columns[5], name + suffix);
        ASSERT_EQ(context.tagData(rows[i]), PropertyData{data(rows[i])});
    }
}

TEST(ItemStoreTest, WhicheverWriteFailsNothingIsLostAndItIsToldOnce) {
    FailingVfs vfs;
    TemporaryFolder folder;
    int writes = 1;
    for (int k = 1; k <= writes; k += 1 + writes / 20) {
        for (const bool isFullThen : {false, true}) {
            SCOPED_TRACE(k);
            ItemStore::Options options = optionsFor(Backing::tightFile, folder.path());
            options.vfs = vfs.name();
            int told = 0;
            options.fileRefused = [&](const std::string& reason) {
                ++told;
                EXPECT_NE(reason.find("disk is full"), std::string::npos) << reason;
            };
            ItemStore store(options);
            StoreContext context(store, StoreContext::MergePolicy::contextWins);
            const bool counts = k == 1 && !isFullThen; // the first round
            vfs.failWrite(counts ? 0 : k, isFullThen);
            const RowId ghost = fillFolder(context, manyRows);
            renameAll(context, ghost, u"!");
            if (counts)
                writes = std::max(vfs.writes(), 2);
            EXPECT_EQ(told, counts ? 0 : 1);
            renameAll(context, ghost, u"?");
        }
    }
}

TEST(ItemStoreTest, TwoInstancesInOneFolderNeverMeetAndLeaveNothing) {
    TemporaryFolder folder;
    const auto options = optionsFor(Backing::tightFile, folder.path());
    ItemStore second(options);
    StoreContext secondContext(second, StoreContext::MergePolicy::contextWins);
    RowId secondGhost = fillFolder(secondContext, 100, "/few");
    EXPECT_TRUE(folder.tree().empty()) << "what fits into memory needs no file";
    secondContext.deleteRow(secondGhost);
    {
        ItemStore first(options);
        const ItemStore unused(options);
        StoreContext firstContext(first, StoreContext::MergePolicy::contextWins);
        const RowId firstGhost = fillFolder(firstContext, manyRows, "/first");
        secondGhost = fillFolder(secondContext, manyRows, "/second");
        renameAll(firstContext, firstGhost, u".1");
        renameAll(secondContext, secondGhost, u".2");
    }
    EXPECT_EQ(folder.tree().size(), 1u) << "the second one's file and nothing else";
    EXPECT_TRUE(second.migrateToMemory());
    EXPECT_TRUE(folder.tree().empty());
    EXPECT_FALSE(second.migrateToMemory()) << "it is there";
}

TEST(ItemStoreTest, AStartSweepsWhatEarlierProcessesLeft) {
    TemporaryFolder folder;
    const pid_t dead = ::fork();
    if (dead == 0)
        ::_exit(0);
    ASSERT_EQ(::waitpid(dead, nullptr, 0), dead);
    folder.write(fmt::format("tvrn9.db.{}.00c0ffee", dead), "x");
    folder.write(fmt::format("tvrn9.db.{}.00c0ffee", ::getpid()), "of one that lives");
    folder.write("tvrn9.db", "left by a crash, and no database");
    folder.write("tvrn9.db.note", "the user's own");
    const ItemStore store(optionsFor(Backing::file, folder.path()));
    EXPECT_EQ(store.openError(), std::nullopt);
    EXPECT_EQ(folder.tree().size(), 2u);
    EXPECT_EQ(folder.read("tvrn9.db.note"), "the user's own");
}

TEST(ItemStoreTest, TextsThatAreCutAreRefused) {
    TextRegion region(3);
    region.set(0, {"abc", false});
    region.set(2, {"de", true});
    std::string blob;
    region.appendBlob(blob);
    for (std::size_t size = 0; size <= blob.size(); ++size)
        EXPECT_EQ(TextRegion().readBlob(std::string_view(blob).substr(0, size), 3), size == blob.size())
            << size;
}

TEST(ItemStoreTest, AFolderThatTakesNoFileMakesAStoreInMemory) {
    TemporaryFolder folder;
    ItemStore store(optionsFor(Backing::file, folder.path("not there")));
    ASSERT_TRUE(store.openError());
    EXPECT_NE(store.openError()->find("No such file"), std::string::npos);
    EXPECT_EQ(store.kind(), ItemStore::Kind::memory);
}

} // namespace
} // namespace tavrin::test
