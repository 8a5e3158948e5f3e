#include "RenameBench.h"
#include "common/FailingFileSystem.h"
#include "common/FailingVfs.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>

namespace tavrin::test {

namespace {

constexpr std::ptrdiff_t manyFiles = 4500; // whose rows do not fit into memory
using Phase = std::function<void(RenameBench&)>;

/// Works on many files while the store's own file fails: from the first, second, fourth ... write or read on,
/// once or for good, until one is not reached any more. The check is told whether a read has failed.
void atEachFailure(const Phase& prepare, const Phase& work,
                   const std::function<void(RenameBench&, bool readFailed)>& check) {
    for (const bool write : {true, false}) {
        bool wasReached = true;
        bool forGood = true;
        for (int k = 1; wasReached; k *= 2, forGood = !forGood) {
            SCOPED_TRACE(fmt::format("{} {}", write ? "write" : "read", k));
            ASSERT_LT(k, 50000);
            FailingVfs vfs;
            const TemporaryFolder data(RenameBench::inMemory());
            RenameBench bench({.kind = ItemStore::Kind::file,
                               .folder = data.path(),
                               .residentBudget = 1,
                               .vfs = vfs.name()},
                              RenameBench::inMemory());
            const std::string first = bench.disk.write("f/10000", "");
            for (int i = 1; i < manyFiles; ++i)
                std::filesystem::create_hard_link(first, bench.disk.path("f/" + std::to_string(10000 + i)));
            prepare(bench);
            (write ? vfs.failWrite(k, forGood) : vfs.failRead(k, forGood));
            work(bench);
            wasReached = (write ? vfs.writes() : vfs.reads()) >= k;
            (write ? vfs.failWrite(0) : vfs.failRead(0));
            check(bench, wasReached && !write);
        }
    }
}

std::vector<std::string> namesOf(const RenameBench& bench) {
    std::vector<std::string> names;
    for (const auto& [name, content] : bench.files())
        names.push_back(name);
    return names;
}

} // namespace

TEST(RenameMishaps, WhatHasGoneOrIsReadOnlyIsReportedAndTheRestIsDone) {
    RenameBench bench;
    bench.plan("a>b b>a f/g/a>b f/h/a>b f/i/a>b");
    bench.happens("remove b, remove f/g");
    FailingFileSystem disk;
    disk.before = [](const FileEvent& event) {
        return event.changesNames() && event.folder.ends_with("/h") ? EROFS : 0;
    };
    bench.rename();
    EXPECT_EQ(bench.files(), tree("a f/h/a f/i/b=f/i/a"));
    EXPECT_EQ(bench.renamed(), 1);
    std::string problems;
    for (const ProblemReport& report : bench.reports)
        problems += report.title + ": " + report.fullPath.substr(bench.disk.path().size() + 1) + "\n";
    EXPECT_EQ(problems, "Could not change a file name: f/g/a\nCould not change a file name: f/h/a\n"
                        "Could not swap file names 'a' and 'b'. Neither file was renamed.: a\n");
}

/// A write is done without; after a read all is read again in memory. Either way no item is missing.
TEST(StoreMishaps, APreviewOnAFailingFileIsWhole) {
    int moved = 0;
    atEachFailure(
        [](RenameBench& bench) {
            bench.host.add({bench.disk.path("f")});
            setSteps(bench.host, "Add to end string=!");
        },
        [](RenameBench& bench) { bench.host.preview(); },
        [&](RenameBench& bench, bool) {
            if (std::ranges::count(bench.host.events, "updatePreview") > 0) {
                ++moved;
                bench.host.preview();
            }
            std::map<std::string, std::string> wanted{{bench.disk.path("f"), "f!"}};
            for (const std::string& name : namesOf(bench))
                wanted.emplace(bench.disk.path(name), name.substr(2) + "!");
            EXPECT_EQ(bench.host.finalNames(), wanted);
            EXPECT_EQ(bench.host.counters().numberOfFilesThatNeedRenaming, manyFiles + 1);
            EXPECT_TRUE(bench.host.errors().empty());
        });
    EXPECT_GT(moved, 0) << "no read has failed";
}

/// During planning and renaming a run whose rows can't be read ends with the true count and paths, and says
/// so once.
TEST(StoreMishaps, ARenameOnAFailingFileLosesNothingAndTellsTheTruth) {
    int brokenOff = 0;
    atEachFailure(
        [](RenameBench& bench) {
            bench.read(namesOf(bench));
            StoreContext context(*bench.host.persistentStoreCoordinator(),
                                 StoreContext::MergePolicy::contextWins);
            for (const RowId row : context.fetch({FetchEntity::file, Predicate::always(), {}, 0})) {
                context.setFinalName(row, context.name(row) + u"!");
                context.change(row).diff = true;
            }
            context.commit();
        },
        [](RenameBench& bench) { bench.rename(); },
        [&](RenameBench& bench, bool readFailed) {
            const std::vector<std::string> files = namesOf(bench);
            const auto renamed = std::ranges::count(files, '!', [](const auto& name) { return name.back(); });
            EXPECT_EQ(std::ssize(files), manyFiles);
            EXPECT_EQ(bench.renamed(), renamed);
            EXPECT_TRUE(renamed == manyFiles || readFailed);
            EXPECT_EQ(bench.host.errors().size(), renamed == manyFiles ? 0U : 1U);
            EXPECT_TRUE(bench.reports.empty());
            std::vector<std::string> paths = bench.sourcePaths();
            std::ranges::sort(paths);
            EXPECT_EQ(paths, files);
            brokenOff += renamed > 0 && renamed < manyFiles ? 1 : 0;
        });
    EXPECT_GT(brokenOff, 0) << "no read has failed in the middle of the renaming";
}

} // namespace tavrin::test
