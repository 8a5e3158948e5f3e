#include "RandomPlan.h"
#include "RenameBench.h"
#include "RenameWatch.h"
#include "common/FailingVfs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
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

TEST(RenameMishaps, LinksStayAndAreReported) {
    RenameBench bench;
    bench.make({"f/a", "f/b"});
    bench.disk.link("f/link", "a");
    bench.disk.link("f/folder link", "..");
    bench.read({"f"});
    bench.setFinalName("f/a", u"new a");
    bench.setFinalName("f/link", u"new link");
    bench.setFinalName("f/folder link", u"new folder link");
    bench.rename();
    EXPECT_EQ(
        bench.disk.tree(),
        (RenameBench::Tree{
            {"f/", ""}, {"f/b", "f/b"}, {"f/folder link", "-> .."}, {"f/link", "-> a"}, {"f/new a", "f/a"}}));
    EXPECT_THAT(bench.problems(), ElementsAre("Could not change a file name: f/folder link",
                                              "Could not change a file name: f/link"));
    EXPECT_TRUE(bench.reports[0].message.starts_with("This file is a symbolic link"));
}

/// A link in the folder of a cycle can't take part: both of its steps are reported.
TEST(RenameMishaps, ALinkBesideACycle) {
    RenameBench bench;
    bench.make({"f/a", "f/b", "f/c"});
    bench.disk.link("f/l", "a");
    bench.read({"f"});
    bench.setFinalName("f/a", u"b");
    bench.setFinalName("f/b", u"c");
    bench.setFinalName("f/c", u"a");
    bench.rename();
    EXPECT_EQ(
        bench.disk.tree(),
        (RenameBench::Tree{{"f/", ""}, {"f/a", "f/c"}, {"f/b", "f/a"}, {"f/c", "f/b"}, {"f/l", "-> a"}}));
    EXPECT_EQ(bench.reports.size(), 2U);
    EXPECT_EQ(bench.renamed(), 3);
}

/// The holder of a name has vanished, the one that waited for it takes the name, and then a cycle goes
/// through the folder: it must not take the one for the other.
TEST(RenameMishaps, WhatHasTakenThePlaceOfAVanishedItemIsLeftAloneByACycle) {
    RenameBench bench;
    bench.make({"f/a", "f/b", "f/c", "f/waits", "f/holds"});
    bench.read({"f"});
    bench.setFinalName("f/a", u"b");
    bench.setFinalName("f/b", u"c");
    bench.setFinalName("f/c", u"a");
    bench.setFinalName("f/waits", u"holds");
    bench.setFinalName("f/holds", u"z");
    bench.disk.remove("f/holds");
    bench.rename();
    EXPECT_EQ(bench.files(),
              (RenameBench::Tree{{"f/a", "f/c"}, {"f/b", "f/a"}, {"f/c", "f/b"}, {"f/holds", "f/waits"}}));
}

TEST(RenameMishaps, ASwapWhosePartnerHasGoneIsTakenBack) {
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

/// What stands under a temporary name is looked at again before it gets its final one.
TEST(RenameMishaps, AnotherItemUnderATemporaryNameIsLeftAlone) {
    for (const bool isSwap : {true, false}) {
        RenameBench bench;
        bench.make({"f/a", "f/b", "f/c"});
        bench.read({"f"});
        bench.setFinalName("f/a", u"b");
        bench.setFinalName("f/b", isSwap ? u"a" : u"c");
        if (!isSwap)
            bench.setFinalName("f/c", u"a");
        const std::string temporary = isSwap ? "f/temporary file name for swapped file" : "f/_temp_a";
        RenameWatch watch;
        watch.before = [&](const WatchedRename& rename) {
            // As the second item is about to go, somebody exchanges the first under its temporary name.
            if (rename.from == "b") {
                std::filesystem::rename(bench.disk.path(temporary), bench.disk.path("f/elsewhere"));
                bench.disk.write(temporary, "stranger");
            }
            return 0;
        };
        bench.rename();
        EXPECT_EQ(bench.disk.read(temporary), "stranger");
        EXPECT_EQ(bench.reports.size(), 1U);
    }
}

TEST(RenameMishaps, AFolderThatHasGoneAndAReadOnlyOneAreReported) {
    RenameBench bench;
    bench.make({"f/g/a", "f/h/a", "f/i/a"});
    bench.read({"f"});
    for (const char* name : {"f/g/a", "f/h/a", "f/i/a"})
        bench.setFinalName(name, u"b");
    bench.disk.remove("f/g/a");
    bench.disk.remove("f/g");
    RenameWatch watch;
    watch.before = [&](const WatchedRename& rename) { return rename.folder.ends_with("/h") ? EROFS : 0; };
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
