#include "common/FailingVfs.h"
#include "store/StoreTestData.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/TextRegion.h"

#include <fmt/core.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace tavrin::test {
namespace {

constexpr int manyRows = 20000;

/// Marks and renames all rows in batches, as a stage does.
void renameAll(StoreContext& context, PassMarker marker, const std::u16string& suffix) {
    const FetchRequest open{FetchEntity::file, Predicate::notMarked(marker), {}, 1000};
    for (int guard = 0; guard < 1000; ++guard) {
        const std::vector<RowId> batch = context.fetch(open);
        if (batch.empty())
            return;
        for (const RowId row : batch) {
            context.setFinalName(row, context.name(row) + suffix);
            context.change(row).diff = true;
            context.setRegexColumns(row, {context.name(row), suffix, u"", u"", u"", u""});
            context.setTagData(row, {std::vector<std::uint8_t>(100, static_cast<std::uint8_t>(row))});
            context.setStageFlag(row, marker);
        }
        context.commit();
        context.refault();
    }
    ADD_FAILURE() << "the pass does not end";
}

void expectAllRenamed(StoreContext& context, RowId ghost, const std::u16string& suffix) {
    EXPECT_EQ(context.count(FetchEntity::file, Predicate::isTrue(NodeKey::diff)), std::size_t{manyRows});
    const std::vector<RowId> rows = context.children(ghost);
    ASSERT_EQ(rows.size(), std::size_t{manyRows});
    for (std::size_t i = 0; i < rows.size(); i += 97) {
        const std::u16string name = context.name(rows[i]);
        EXPECT_EQ(context.finalName(rows[i]), name + suffix);
        const auto columns = context.regexColumns(rows[i]);
        ASSERT_TRUE(columns);
        EXPECT_EQ(columns->at(0) + columns->at(1) + columns->at(5), name + suffix);
        ASSERT_EQ(context.tagData(rows[i]),
                  PropertyData{std::vector<std::uint8_t>(100, static_cast<std::uint8_t>(rows[i]))});
    }
}

TEST(ItemStoreTest, WhicheverWriteFailsNothingIsLostAndItIsToldOnce) {
    FailingVfs vfs;
    TemporaryFolder folder;
    int writes = 1;
    for (int k = 1; k <= writes; k += 1 + writes / 20) {
        for (const bool isFullThen : {false, true}) {
            ItemStore::Options options = optionsFor(Backing::tightFile, folder.path());
            options.vfs = vfs.name();
            int told = 0;
            options.fileRefused = [&](const std::string& reason) {
                ++told;
                EXPECT_NE(reason.find("disk is full"), std::string::npos) << reason;
            };
            ItemStore store(options);
            StoreContext context(store, StoreContext::MergePolicy::contextWins);
            vfs.failWrite(k == 1 && !isFullThen ? 0 : k, isFullThen); // the first round counts
            const RowId ghost = fillFolder(context, manyRows);
            renameAll(context, 3, u"!");
            SCOPED_TRACE(k);
            if (k == 1 && !isFullThen)
                writes = std::max(vfs.writes(), 2);
            else
                EXPECT_EQ(told, 1);
            context.reset();
            expectAllRenamed(context, ghost, u"!");
            renameAll(context, 4, u"?");
            expectAllRenamed(context, ghost, u"?");
        }
    }
}

TEST(ItemStoreTest, TwoInstancesInOneFolderNeverMeetAndLeaveNothing) {
    TemporaryFolder folder;
    {
        auto first = std::make_unique<ItemStore>(optionsFor(Backing::tightFile, folder.path()));
        const ItemStore unused(optionsFor(Backing::tightFile, folder.path()));
        StoreContext firstContext(*first, StoreContext::MergePolicy::contextWins);
        const RowId few = fillFolder(firstContext, 100, "/few");
        EXPECT_TRUE(folder.tree().empty()) << "what fits into memory needs no file";
        firstContext.deleteRow(few);
        const RowId firstGhost = fillFolder(firstContext, manyRows, "/first");
        ItemStore second(optionsFor(Backing::tightFile, folder.path()));
        StoreContext secondContext(second, StoreContext::MergePolicy::contextWins);
        const RowId secondGhost = fillFolder(secondContext, manyRows, "/second");
        renameAll(firstContext, 1, u".1");
        renameAll(secondContext, 1, u".2");
        expectAllRenamed(firstContext, firstGhost, u".1");
        expectAllRenamed(secondContext, secondGhost, u".2");
        first.reset();
        EXPECT_EQ(folder.tree().size(), 1u) << "the second one's file and nothing else";
    }
    EXPECT_TRUE(folder.tree().empty());
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

TEST(ItemStoreTest, TextsComeBackFromTheirBytesAndCutOnesAreRefused) {
    TextRegion region(3);
    region.set(0, {"abc", false});
    region.set(2, {"de", true});
    std::string blob;
    region.appendBlob(blob);
    TextRegion read;
    for (std::size_t size = 0; size < blob.size(); ++size)
        EXPECT_FALSE(read.readBlob(std::string_view(blob).substr(0, size), 3)) << size;
    ASSERT_TRUE(read.readBlob(blob, 3));
    EXPECT_EQ(read.get(0).bytes, "abc");
    EXPECT_FALSE(read.has(1));
    EXPECT_EQ(read.get(2).bytes, "de");
    EXPECT_TRUE(read.get(2).isWide);
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
