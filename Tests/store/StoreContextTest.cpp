#include "store/contexts/StoreContext.h"

#include "common/Testing.h"
#include "store/StoreTestData.h"
#include "store/rows/FileMO.h"

namespace tavrin::test {
namespace {

class StoreContextTest : public testing::TestWithParam<Backing> {
  protected:
    TemporaryFolder folder;
    ItemStore store{optionsFor(GetParam(), folder.path())};
    StoreContext context{store, StoreContext::MergePolicy::contextWins};
    StoreContext other{store, StoreContext::MergePolicy::contextWins};

    /// Marks what the request yields, batch by batch, until nothing is left; the number of rows.
    std::size_t markAll(const FetchRequest& request, PassMarker marker,
                        const std::function<void()>& afterBatch) {
        std::size_t seen = 0;
        for (std::vector<RowId> batch; !(batch = context.fetch(request)).empty(); seen += batch.size()) {
            for (const RowId row : batch) {
                EXPECT_NE(context.stageFlag(row), marker);
                context.setStageFlag(row, marker);
            }
            context.commit();
            context.reset();
            afterBatch();
        }
        return seen;
    }
};

INSTANTIATE_TEST_SUITE_P(Backings, StoreContextTest,
                         testing::Values(Backing::memory, Backing::file, Backing::tightFile));

TEST_P(StoreContextTest, CommitsOnlyWhatAContextHasChangedAndNothingOfADeletedRow) {
    const RowId ghost = fillFolder(context, 2);
    const std::vector<RowId> rows = context.children(ghost);
    for (const RowId row : rows) {
        context.change(row).depth = 5;
        context.change(row).root = true;
        context.setFinalName(row, u"late");
    }
    other.change(rows[0]).manualOrder = 99;
    other.deleteRow(rows[1]);
    other.commit();
    context.commit();
    context.reset();
    EXPECT_EQ(context.row(rows[0]).depth, 5);
    EXPECT_EQ(context.row(rows[0]).manualOrder, 99);
    EXPECT_EQ(context.fetch({FetchEntity::file, Predicate::isTrue(NodeKey::root), {}, 0}),
              std::vector<RowId>{rows[0]});
    EXPECT_EQ(context.fullPath(rows[1]), "");
    EXPECT_EQ(context.children(ghost), std::vector<RowId>{rows[0]});
}

TEST_P(StoreContextTest, BulkDeletionEmptiesTheStoreInBatches) {
    fillFolder(context, 9000);
    for (const std::size_t batch : {2000, 2000, 2000, 2000, 1001, 0}) {
        EXPECT_EQ(context.deleteNodes(2000), batch);
        context.commit();
        context.reset();
    }
    EXPECT_EQ(context.count(FetchEntity::node, Predicate::always()), 0u);
    EXPECT_EQ(context.children(fillFolder(context, 10)).size(), 10u);
}

TEST_P(StoreContextTest, PassesGoOnWhereTheyStoppedWrapRoundAndSeeWhatIsInsertedMeanwhile) {
    const RowId ghost = fillFolder(context, 3000);
    bool hasInserted = false;
    const auto insertOne = [&] {
        if (!std::exchange(hasInserted, true))
            other.insertFile(ghost, "a late one", false, false, 0);
        other.commit();
    };
    for (const bool byName : {false, true}) {
        FetchRequest request{FetchEntity::file, Predicate::notMarked(8 + byName), {}, 1000};
        if (byName)
            request.order = {{NodeKey::name, false}};
        const std::vector<RowId> first = context.fetch(request);
        ASSERT_EQ(first.size(), 1000u);
        EXPECT_EQ(context.name(first.front()), byName ? u"file 999.txt" : u"file 1.txt");
        // Only half of the batch is marked: the rest must come again after all others.
        for (std::size_t i = 0; i < 500; ++i)
            context.setStageFlag(first[i], 8 + byName);
        context.commit();
        context.reset();
        const std::vector<RowId> second = context.fetch(request);
        ASSERT_EQ(second.size(), 1000u);
        EXPECT_EQ(context.name(second.front()), byName ? u"file 2799.txt" : u"file 1001.txt");
        EXPECT_EQ(markAll(request, 8 + byName, insertOne), 2501u);
    }
}

TEST_P(StoreContextTest, RowsStagedFarApartAreCommittedOnTheWayWhereTheyWouldPage) {
    const RowId ghost = fillFolder(context, 120000);
    const std::vector<RowId> rows = context.children(ghost);
    bool hasCommitted = false;
    for (std::size_t i = 0; i < rows.size() && !hasCommitted; i += 300) {
        context.change(rows[i]).depth = 1;
        hasCommitted = context.commitIfMuchIsStaged();
    }
    EXPECT_EQ(hasCommitted, GetParam() != Backing::memory);
    EXPECT_EQ(context.hasChanges(), !hasCommitted);
    EXPECT_EQ(other.row(rows[0]).depth, hasCommitted ? 1 : 0);
}

TEST_P(StoreContextTest, ReadsMetadataOnceAlsoWhenThereIsNone) {
    const RowId ghost = fillFolder(context, 2);
    int reads = 0;
    for (const RowId row : context.children(ghost)) {
        const PropertyDictionary tags =
            reads == 0 ? PropertyDictionary{{"Title", u"Sea"}} : PropertyDictionary{};
        const auto reader = [&](const std::string& path) {
            EXPECT_EQ(path, context.fullPath(row));
            ++reads;
            return FileMetadata{tags};
        };
        FileMO failing(context, row);
        failing.loadTagDictionary([](const std::string&) { return FileMetadata{.failure = "gone"}; });
        EXPECT_EQ(failing.tagFailure(), "gone");
        FileMO first(context, row); // a failure is not kept
        first.loadTagDictionary(reader);
        first.loadTagDictionary(reader);
        context.commit();
        FileMO second(other, row);
        second.loadTagDictionary(reader);
        EXPECT_EQ(second.tagDictionary(), tags);
    }
    EXPECT_EQ(reads, 2);
}

/// A store whose commits are merged into a main context, as the application does it.
class MergeTest : public testing::Test {
  protected:
    MergeTest() {
        store.setDidSaveHandler([this](const StoreChanges& changes) {
            std::scoped_lock lock(main.mutex());
            main.merge(changes);
            committer = changes.committer;
        });
        ghost = fillFolder(worker, 1000);
        rows = main.children(ghost);
    }

    ItemStore store{ItemStore::Options{}};
    StoreContext main{store, StoreContext::MergePolicy::storeWins};
    StoreContext worker{store, StoreContext::MergePolicy::contextWins};
    const StoreContext* committer = nullptr;
    RowId ghost = noRow;
    std::vector<RowId> rows;
};

TEST_F(MergeTest, WhatTheStoreHoldsWinsOverThePendingChangeOfTheMainContext) {
    main.change(rows[1]).manualOrder = 500;
    main.change(rows[2]).manualOrder = 501;
    worker.change(rows[0]).depth = 3;
    worker.change(rows[1]).depth = 3;
    worker.commit();
    EXPECT_EQ(committer, &worker);
    main.commit();
    EXPECT_EQ(committer, &main) << "so that it does not merge its own";
    EXPECT_EQ(main.row(rows[1]).manualOrder, 2) << "its row had moved on";
    EXPECT_EQ(main.row(rows[1]).depth, 3);
    EXPECT_EQ(main.row(rows[2]).manualOrder, 501);
}

TEST_F(MergeTest, OnlyWhatAListDependsOnVoidsIt) {
    const RowId row = rows[5];
    const std::tuple<const char*, std::function<void()>, bool> cases[] = {
        {"final name", [&] { worker.setFinalName(row, u"x"); }, false},
        {"diff", [&] { worker.change(row).diff = true; }, false},
        {"marker", [&] { worker.setStageFlag(row, 4); }, false},
        {"depth", [&] { worker.change(row).depth = 4; }, false},
        {"date", [&] { worker.change(row).modDate = 4; }, true},
        {"root", [&] { worker.change(row).root = !worker.row(row).root; }, true},
        {"insert", [&] { worker.insertFile(ghost, "new", false, false, 0); }, true},
        {"deletion", [&] { worker.deleteRow(row); }, true},
    };
    for (const auto& [name, change, isVoid] : cases) {
        const std::uint64_t before = main.listVersion();
        change();
        worker.commit();
        EXPECT_EQ(main.listVersion() != before, isVoid) << name;
        worker.reset();
    }
}

TEST_F(MergeTest, CountersAndErrorsReachTheMainContext) {
    worker.changeEngineControl().numberOfFolders = 12;
    worker.insertProcessingError({"title", "message", "/p\xE9"});
    EXPECT_EQ(main.engineControl().numberOfFolders, 0);
    EXPECT_TRUE(main.processingErrors().empty());
    worker.commit();
    EXPECT_EQ(main.engineControl().numberOfFolders, 12);
    ASSERT_EQ(main.processingErrors().size(), 1u);
    EXPECT_EQ(main.processingErrors()[0].path, "/p\xE9");
    EXPECT_EQ(worker.deleteProcessingErrors(2000), 1u);
    EXPECT_EQ(worker.deleteProcessingErrors(2000), 0u);
    worker.commit();
    EXPECT_TRUE(main.processingErrors().empty());
}

TEST_F(MergeTest, AReaderNeverSeesHalfABatch) {
    std::atomic<bool> isOver{false};
    std::thread writer([&] {
        for (int round = 0; round < 60; ++round) {
            for (const RowId row : rows) {
                worker.change(row).depth = round;
                worker.setFinalName(row, round % 2 == 0 ? u"even" : u"odd");
            }
            worker.commit();
            worker.reset();
        }
        isOver = true;
    });
    while (!isOver) {
        std::scoped_lock lock(main.mutex());
        // Rows of one block are read together, so they must agree.
        const std::int32_t depth = main.row(rows[0]).depth;
        for (std::size_t i = 1; i < 100; ++i)
            ASSERT_EQ(main.row(rows[i]).depth, depth);
    }
    writer.join();
}

} // namespace
} // namespace tavrin::test
