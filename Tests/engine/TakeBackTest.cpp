#include "HistoryBench.h"
#include "RandomPlan.h"
#include "RecordText.h"
#include "common/FailingFileSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace tavrin::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Files "a" and "b" that are to be "A1" and "B1", in a folder "box" that stays.
void renameTwo(HistoryBench& bench) {
    bench.plan("box/a>A1 box/b>B1");
    bench.rename();
    ASSERT_EQ(bench.files(), tree("box/A1=box/a box/B1=box/b"));
}

/// Puts a file that was written anew in the place of another, as editors do.
void saveAnew(const HistoryBench& bench, const char* name) {
    bench.disk.write("box/saved", "new");
    bench.move("box/saved", name);
}

/// A later run that gave "A1" the name "again".
void renameAgain(HistoryBench& bench) {
    RecordText later(bench.records.read(bench.newestRecord()));
    std::erase_if(later.lines, [](const std::string& line) { return line.ends_with("\tb\tB1\t"); });
    for (std::string& line : later.lines) {
        if (const std::size_t at = line.find("\ta\tA1\t"); at != std::string::npos)
            line.replace(at, 6, "\tA1\tagain\t");
    }
    bench.chosen = RunHistory(bench.records.path()).runs().back().name;
    bench.records.write("99990101T000000.000000-1.run", later.withChecksums());
    bench.move("box/A1", "box/again");
}

} // namespace

TEST(TakeBackLaws, UndoGivesTheTreeBeforeAndRedoTheTreeAfter) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const RandomPlan plan(seed);
        HistoryBench bench(seed % 4 == 0 ? "" : RenameBench::inMemory());
        plan.setUp(bench);
        bench.rename();
        for (int i = 0; i < 2; ++i) {
            bench.takeBack(RunKind::undo);
            ASSERT_THAT(bench.failures, IsEmpty()) << bench.records.read(bench.newestRecord());
            ASSERT_EQ(bench.files(), plan.before()) << bench.refusal;
            bench.takeBack(RunKind::redo);
            ASSERT_THAT(bench.failures, IsEmpty());
            ASSERT_EQ(bench.files(), plan.after()) << bench.refusal;
        }
    }
}

/// From each call on that would change the disk nothing works any more, in the run or in the undo of it, as
/// if the program had been killed there. What is left is taken back, or finished.
TEST(TakeBackLaws, WhatIsCutOffAtAnyCallIsTakenBackOrFinished) {
    const auto cutAt = [](std::size_t k, const Volume& volume, unsigned seed, bool cutsUndo, RunKind then) {
        const RandomPlan plan(seed);
        HistoryBench bench(RenameBench::inMemory());
        bench.host.prompts.onNoRecord = [](const NoRecordQuestion&) { return ConfirmationChoice::stop; };
        plan.setUp(bench);
        FailingFileSystem disk;
        volume.refuse(disk);
        if (cutsUndo)
            bench.rename();
        std::size_t changes = 0;
        disk.before = [&](const FileEvent& event) {
            changes += event.changesDisk() ? 1 : 0;
            return changes >= k ? EIO : 0;
        };
        if (cutsUndo)
            bench.takeBack(RunKind::undo);
        else
            bench.rename();
        disk.before = [](const FileEvent&) { return 0; };
        bench.takeBack(then);
        // Where there is nothing to finish, nothing was begun, or all was done.
        const bool isBefore =
            then == RunKind::undo || (!bench.refusal.empty() && bench.files() == plan.before());
        EXPECT_EQ(bench.files(), isBefore ? plan.before() : plan.after())
            << bench.refusal << testing::PrintToString(bench.failures);
        return changes >= k;
    };
    for (const Volume& volume : volumes) {
        for (const unsigned seed : RandomPlan::eventful) {
            for (const bool cutsUndo : {false, true}) {
                for (const RunKind then : {RunKind::undo, RunKind::redo}) {
                    std::size_t k = 1;
                    for (bool wasCut = true; wasCut; ++k) {
                        SCOPED_TRACE(volume.title + std::string(", plan ") + std::to_string(seed) +
                                     ", change " + std::to_string(k) + (cutsUndo ? " of the undo" : "") +
                                     (then == RunKind::undo ? ", then undo" : ", then redo"));
                        wasCut = cutAt(k, volume, seed, cutsUndo, then);
                    }
                    EXPECT_GT(k, 6U) << "hardly anything was changed";
                }
            }
        }
    }
}

/// What somebody does between a run and its undo, what is said of it, and what is left.
TEST(TakeBack, LeavesAloneWhatIsNotTheItem) {
    struct Case {
        const char* what;
        std::function<void(HistoryBench&)> happens;
        std::vector<std::string> reasons; ///< parts of them
        RenameBench::Tree left;
        bool takesReplaced = false;
    };
    const auto half = [](const char* what, bool hasNoFlag, const std::function<void(HistoryBench&)>& happens,
                         const std::vector<std::string>& reasons, const RenameBench::Tree& left) {
        return Case{what,
                    [=](HistoryBench& bench) {
                        bench.interruptNewest(hasNoFlag);
                        happens(bench);
                    },
                    reasons, left};
    };
    const auto reserve = [](const char* content) {
        return [=](HistoryBench& bench) {
            bench.move("box/A1", "box/a");
            bench.disk.write("box/A1", content);
        };
    };
    const std::string gone = "It is not to be found";
    const std::string unlike = "Another item lies in its place";
    const std::string leftover = "More than one item looks like it";
    const std::vector<Case> cases = {
        {"gone", [](HistoryBench& b) { b.disk.remove("box/A1"); }, {gone}, tree("box/b")},
        {"replaced by saving",
         [](HistoryBench& b) { saveAnew(b, "box/A1"); },
         {unlike},
         tree("box/A1=new box/b")},
        {"replaced by saving, and taken for it",
         [](HistoryBench& b) { saveAnew(b, "box/A1"); },
         {},
         tree("box/a=new box/b"),
         true},
        {"old name taken",
         [](HistoryBench& b) { b.disk.write("box/a", "intruder"); },
         {"Another file with this name"},
         tree("box/A1=box/a box/a=intruder box/b")},
        {"moved elsewhere",
         [](HistoryBench& b) { b.move("box/A1", "elsewhere"); },
         {gone},
         tree("elsewhere=box/a box/b")},
        {"renamed by a later run",
         renameAgain,
         {gone + ": it has been removed, moved or renamed. The run 99990101T000000.000000-1 has renamed it "
                 "again."},
         tree("box/again=box/a box/b")},
        {"folder moved",
         [](HistoryBench& b) { b.move("box", "other"); },
         {"Its folder is not to be found.", "Its folder is not to be found."},
         tree("other/A1=box/a other/B1=box/b")},
        {"folder replaced",
         [](HistoryBench& b) {
             b.move("box", "other");
             b.disk.write("box/A1", "theirs");
         },
         {"Its folder is another one", "Its folder is another one"},
         tree("other/A1=box/a other/B1=box/b box/A1=theirs")},
        {"exchanged: each is known under the other's name",
         [](HistoryBench& b) {
             b.move("box/A1", "box/t");
             b.move("box/B1", "box/A1");
             b.move("box/t", "box/B1");
         },
         {unlike, unlike},
         tree("box/A1=box/b box/B1=box/a")},
        // Where the kernel's flag is refused, a killed run leaves one step half done, and only that is
        // cleared.
        half(
            "a second name", true,
            [](HistoryBench& b) {
                std::filesystem::create_hard_link(b.disk.path("box/A1"), b.disk.path("box/a"));
            },
            {}, tree("box/a box/b")),
        half("an empty reservation", true, reserve(""), {}, tree("box/a box/b")),
        half("the same where the flag is known", false, reserve(""), {}, tree("box/a box/A1= box/b")),
        half("something in it", true, reserve("x"), {}, tree("box/a box/A1=x box/b")),
        half(
            "more than one", true,
            [&](HistoryBench& b) {
                reserve("")(b);
                b.move("box/B1", "box/b");
                b.disk.write("box/B1", "");
            },
            {leftover, leftover}, tree("box/a box/A1= box/b box/B1=")),
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        HistoryBench bench;
        renameTwo(bench);
        c.happens(bench);
        bench.takeBack(RunKind::undo, c.takesReplaced);
        std::vector<testing::Matcher<std::string>> reasons;
        for (const std::string& reason : c.reasons)
            reasons.push_back(testing::HasSubstr(reason));
        EXPECT_THAT(bench.failures, testing::ElementsAreArray(reasons)) << bench.refusal;
        EXPECT_EQ(bench.files(), c.left);
    }
}

TEST(TakeBack, KnowsWhatWasSavedAnewBeforeTheRun) {
    HistoryBench bench;
    bench.plan("box/a>A1");
    saveAnew(bench, "box/a");
    bench.rename();
    ASSERT_EQ(bench.files(), tree("box/A1=new"));
    EXPECT_EQ(bench.takeBack(RunKind::undo), 1);
    EXPECT_EQ(bench.files(), tree("box/a=new"));
}

/// Whatever call fails while the plan is written, no half record is left behind, and the user decides.
TEST(RunJournal, ARunThatCantBeRecordedIsAskedAbout) {
    for (const bool goesOn : {true, false}) {
        for (const FileCall call : {FileCall::makeFolders, FileCall::write, FileCall::sync}) {
            for (std::size_t number = 1; number <= 2; ++number) {
                HistoryBench bench;
                bench.host.prompts.onNoRecord = [&](const NoRecordQuestion&) {
                    return goesOn ? ConfirmationChoice::one : ConfirmationChoice::stop;
                };
                bench.plan("a>b");
                if (call == FileCall::makeFolders)
                    bench.host.engine.setHistoryPlace({bench.records.write("file"), "test"});
                FailingFileSystem failing;
                failing.failKind(call, ENOSPC, number);
                bench.rename();
                const bool hasFailed = failing.failureCount() > 0 || call == FileCall::makeFolders;
                EXPECT_EQ(bench.files(), tree(goesOn || !hasFailed ? "b=a" : "a"));
                EXPECT_EQ(bench.states().size(), hasFailed ? 0U : 1U);
            }
        }
    }
}

TEST(RunHistory, KeepsWhatIsNotSettledHoweverOld) {
    HistoryBench bench;
    renameTwo(bench);
    const std::string text = bench.records.read(bench.newestRecord());
    const std::string cutOff = text.substr(0, text.rfind("done\t"));
    for (int i = 0; i < 60; ++i)
        bench.records.write("20200101T0000" + std::to_string(10 + i) + ".000000-1.run",
                            i == 3 ? cutOff : text);
    RunHistory(bench.records.path()).prune();
    EXPECT_THAT(bench.states(), ElementsAre("whole", "interrupted"));
}

} // namespace tavrin::test
