#include "store/StoreTestData.h"
#include "store/contexts/StoreContext.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <tuple>

namespace tavrin::test {
namespace {

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
