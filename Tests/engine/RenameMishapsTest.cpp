#include "RenameBench.h"
#include "common/FailingFileSystem.h"
#include "common/FailingVfs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>

namespace tavrin::test {

namespace {

using testing::ElementsAre;

/// A bench with many files, whose rows do not fit into memory. From a call on it, its file fails: the k-th
/// write, or the k-th read, once or from then on.
class FailingStoreBench {
  public:
    static constexpr std::size_t count = 4500;
    std::vector<std::string> names;
    FailingVfs vfs;
    TemporaryFolder data{RenameBench::inMemory()};
    RenameBench bench{
        {.kind = ItemStore::Kind::file, .folder = data.path(), .residentBudget = 1, .vfs = vfs.name()},
        RenameBench::inMemory()};

    FailingStoreBench() {
        const std::string first = bench.disk.write("f/10000", "");
        for (std::size_t i = 0; i < count; ++i) {
            names.push_back("f/" + std::to_string(10000 + i));
            if (i > 0)
                std::filesystem::create_hard_link(first, bench.disk.path(names.back()));
        }
    }

    /// Whether `work` has come to the failing call.
    bool failsDuring(bool write, int k, bool forGood, const std::function<void()>& work) {
        (write ? vfs.failWrite(k, forGood) : vfs.failRead(k, forGood));
        work();
        const bool wasReached = (write ? vfs.writes() : vfs.reads()) >= k;
        (write ? vfs.failWrite(0) : vfs.failRead(0));
        return wasReached;
    }
};

/// Calls with each place where a file can fail, until one is not reached any more.
void atEachFailure(const std::function<bool(bool write, int k, bool forGood)>& reaches) {
    for (const bool write : {true, false}) {
        bool forGood = true;
        bool wasReached = true;
        for (int k = 1; wasReached; k *= 2, forGood = !forGood) {
            SCOPED_TRACE(std::string(write ? "write " : "read ") + std::to_string(k));
            wasReached = reaches(write, k, forGood);
            ASSERT_LT(k, 50000);
        }
    }
}

} // namespace

TEST(RenameMishaps, WhatHasGoneOrIsReadOnlyIsReportedAndTheRestIsDone) {
    RenameBench bench;
    bench.plan("a>b b>a f/g/a>b f/h/a>b f/i/a>b");
    bench.disk.remove("b");
    std::filesystem::remove_all(bench.disk.path("f/g"));
    FailingFileSystem disk;
    disk.before = [](const FileEvent& event) {
        return event.changesNames() && event.folder.ends_with("/h") ? EROFS : 0;
    };
    bench.rename();
    EXPECT_EQ(bench.files(), tree("a f/h/a f/i/b=f/i/a"));
    EXPECT_EQ(bench.renamed(), 1);
    EXPECT_THAT(bench.problems(),
                ElementsAre("Could not change a file name: f/g/a", "Could not change a file name: f/h/a",
                            "Could not swap file names 'a' and 'b'. Neither file was renamed.: a"));
}

/// A write is done without; after a read all is read again in memory. Either way no item is missing.
TEST(StoreMishaps, APreviewOnAFailingFileIsWhole) {
    int moved = 0;
    atEachFailure([&](bool write, int k, bool forGood) {
        FailingStoreBench store;
        EngineTestHost& host = store.bench.host;
        host.add({store.bench.disk.path("f")});
        host.setSteps({{"Add to end", {{"string", u"!"}}}});
        const bool wasReached = store.failsDuring(write, k, forGood, [&] { host.preview(); });
        if (std::ranges::count(host.events, "updatePreview") > 0) {
            ++moved;
            host.preview();
        }
        std::map<std::string, std::string> wanted{{store.bench.disk.path("f"), "f!"}};
        for (const std::string& name : store.names)
            wanted.emplace(store.bench.disk.path(name), name.substr(2) + "!");
        EXPECT_EQ(host.finalNames(), wanted);
        EXPECT_EQ(host.counters().numberOfFilesThatNeedRenaming, static_cast<int>(wanted.size()));
        EXPECT_THAT(host.errors(), testing::IsEmpty());
        return wasReached;
    });
    EXPECT_GT(moved, 0) << "no read has failed";
}

/// During planning and renaming a run whose rows can't be read ends with the true count and paths, and says
/// so once.
TEST(StoreMishaps, ARenameOnAFailingFileLosesNothingAndTellsTheTruth) {
    int brokenOff = 0;
    atEachFailure([&](bool write, int k, bool forGood) {
        FailingStoreBench store;
        RenameBench& bench = store.bench;
        bench.read(store.names);
        StoreContext context(*bench.host.persistentStoreCoordinator(),
                             StoreContext::MergePolicy::contextWins);
        for (const RowId row : context.fetch({FetchEntity::file, Predicate::always(), {}, 0})) {
            context.setFinalName(row, context.name(row) + u"!");
            context.change(row).diff = true;
        }
        context.commit();
        const bool wasReached = store.failsDuring(write, k, forGood, [&] { bench.rename(); });
        std::vector<std::string> files;
        for (const auto& [name, content] : bench.files())
            files.push_back(name);
        const auto renamed =
            std::ranges::count_if(files, [](const auto& name) { return name.back() == '!'; });
        EXPECT_EQ(files.size(), FailingStoreBench::count);
        EXPECT_EQ(bench.renamed(), renamed);
        const bool isWhole = renamed == static_cast<std::ptrdiff_t>(FailingStoreBench::count);
        EXPECT_TRUE(isWhole || (wasReached && !write));
        EXPECT_EQ(bench.host.errors().size(), isWhole ? 0U : 1U);
        EXPECT_TRUE(bench.reports.empty());
        std::vector<std::string> paths = bench.sourcePaths();
        std::ranges::sort(paths);
        EXPECT_EQ(paths, files);
        brokenOff += renamed > 0 && !isWhole ? 1 : 0;
        return wasReached;
    });
    EXPECT_GT(brokenOff, 0) << "no read has failed in the middle of the renaming";
}

} // namespace tavrin::test
