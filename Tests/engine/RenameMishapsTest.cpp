#include "RenameBench.h"
#include "common/FailingFileSystem.h"
#include "common/FailingVfs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

namespace tavrin::test {

namespace {

using testing::ElementsAre;

} // namespace

TEST(RenameMishaps, ASwapWhosePartnerHasGoneIsNotBegun) {
    RenameBench bench;
    bench.makeAndRead({"a", "b"});
    bench.setFinalName("a", u"b");
    bench.setFinalName("b", u"a");
    bench.disk.remove("b");
    bench.rename();
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"a", "a"}}));
    EXPECT_EQ(bench.renamed(), 0);
    EXPECT_THAT(bench.problems(),
                ElementsAre("Could not swap file names 'a' and 'b'. Neither file was renamed.: a"));
}

TEST(RenameMishaps, AFolderThatHasGoneAndAReadOnlyOneAreReported) {
    RenameBench bench;
    bench.make({"f/g/a", "f/h/a", "f/i/a"});
    bench.read({"f"});
    for (const char* name : {"f/g/a", "f/h/a", "f/i/a"})
        bench.setFinalName(name, u"b");
    bench.disk.remove("f/g/a");
    bench.disk.remove("f/g");
    FailingFileSystem disk;
    disk.before = [](const FileEvent& event) {
        return event.changesNames() && event.folder.ends_with("/h") ? EROFS : 0;
    };
    bench.rename();
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"f/h/a", "f/h/a"}, {"f/i/b", "f/i/a"}}));
    EXPECT_THAT(bench.problems(),
                ElementsAre("Could not change a file name: f/g/a", "Could not change a file name: f/h/a"));
}

/// Each write, then each read, of the store's file fails during planning and renaming, once or from then on.
/// A write is done without; after a read the run ends with the true count and paths, and says so once.
TEST(RenameMishaps, AFailingStoreFileLosesNoFileAndTheTruthIsTold) {
    constexpr int count = 4500;
    int brokenOff = 0;
    for (const bool write : {true, false}) {
        bool hasFailed = true;
        bool forGood = true;
        for (int k = 1; hasFailed; k *= 2, forGood = !forGood) {
            SCOPED_TRACE(std::string(write ? "write " : "read ") + std::to_string(k));
            FailingVfs vfs;
            TemporaryFolder data;
            RenameBench bench({.kind = ItemStore::Kind::file,
                               .folder = data.path(),
                               .residentBudget = 1,
                               .vfs = vfs.name()});
            std::vector<std::string> names{"f/10000"};
            const std::string first = bench.disk.write(names.front(), "");
            for (int i = 1; i < count; ++i) {
                names.push_back("f/" + std::to_string(10000 + i));
                std::filesystem::create_hard_link(first, bench.disk.path(names.back()));
            }
            bench.read(names);
            StoreContext context(*bench.host.persistentStoreCoordinator(),
                                 StoreContext::MergePolicy::contextWins);
            for (const RowId row : context.fetch({FetchEntity::file, Predicate::always(), {}, 0})) {
                context.setFinalName(row, context.name(row) + u"!");
                context.change(row).diff = true;
            }
            context.commit();
            (write ? vfs.failWrite(k, forGood) : vfs.failRead(k, forGood));
            bench.rename();
            hasFailed = (write ? vfs.writes() : vfs.reads()) >= k;
            const RenameBench::Tree files = bench.files();
            const auto renamed = std::count_if(files.begin(), files.end(),
                                               [](const auto& file) { return file.first.ends_with('!'); });
            EXPECT_EQ(files.size(), std::size_t{count});
            EXPECT_EQ(bench.renamed(), renamed);
            const bool isWhole = renamed == count;
            EXPECT_TRUE(isWhole || (hasFailed && !write));
            EXPECT_EQ(bench.host.errors().size(), isWhole ? 0U : 1U);
            EXPECT_TRUE(bench.reports.empty());
            std::vector<std::string> paths = bench.sourcePaths();
            std::sort(paths.begin(), paths.end());
            EXPECT_TRUE(
                std::equal(paths.begin(), paths.end(), files.begin(), files.end(),
                           [](const std::string& path, const auto& file) { return path == file.first; }));
            brokenOff += renamed > 0 && !isWhole ? 1 : 0;
            ASSERT_LT(k, 5000);
        }
    }
    EXPECT_GT(brokenOff, 0) << "no read has failed in the middle of the renaming";
}

} // namespace tavrin::test
