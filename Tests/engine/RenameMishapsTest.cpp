#include "RandomPlan.h"
#include "RenameBench.h"
#include "common/FailingFileSystem.h"
#include "common/FailingVfs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <set>

namespace tavrin::test {

namespace {

using testing::ElementsAre;

std::multiset<std::string> contents(const RenameBench::Tree& files) {
    std::multiset<std::string> result;
    for (const auto& [path, content] : files)
        result.insert(content);
    return result;
}

/// Rows of a folder that is not on disk, so many that not all can be kept in memory.
void addRows(RenameBench& bench, int count) {
    StoreContext context(*bench.host.persistentStoreCoordinator(), StoreContext::MergePolicy::contextWins);
    const RowId ghost = context.insertGhostNode("/nowhere");
    for (int i = 0; i < count; ++i)
        context.insertFile(ghost, std::to_string(i), false, false, i);
    ASSERT_EQ(context.commit(), std::nullopt);
}

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

/// Each read, then each write, of the store's file fails during planning and renaming, once or from then on.
TEST(RenameMishaps, AFailingStoreFileLosesNoFile) {
    for (const bool write : {false, true}) {
        for (const bool andAllAfter : {false, true}) {
            const RandomPlan plan(3);
            bool hasFailed = true;
            for (int k = 1; hasFailed; k += andAllAfter ? 7 : 1) {
                SCOPED_TRACE(std::string(write ? "write " : "read ") + std::to_string(k));
                FailingVfs vfs;
                TemporaryFolder data;
                RenameBench bench({.kind = ItemStore::Kind::file,
                                   .folder = data.path(),
                                   .residentBudget = 1,
                                   .vfs = vfs.name()});
                bench.host.prompts.onPipelineFailed = [](const auto&, const auto&) {
                    return ConfirmationChoice::one;
                };
                plan.setUp(bench);
                addRows(bench, 9000);
                if (write)
                    vfs.failWrite(k, andAllAfter);
                else
                    vfs.failRead(k, andAllAfter);
                bench.rename();
                hasFailed = (write ? vfs.writes() : vfs.reads()) >= k;
                EXPECT_EQ(contents(bench.files()), contents(plan.before()));
                if (!hasFailed) {
                    EXPECT_EQ(bench.files(), plan.after());
                }
                ASSERT_LT(k, 500);
            }
        }
    }
}

} // namespace tavrin::test
