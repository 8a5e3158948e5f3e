#include "HistoryBench.h"
#include "RandomPlan.h"
#include "RecordText.h"
#include "common/FailingFileSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <unistd.h>

namespace tavrin::test {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// Files "a" and "b" that are to be "A1" and "B1", in a folder "box" that stays.
void renameTwo(HistoryBench& bench) {
    bench.makeAndRead({"box/", "box/a", "box/b"});
    bench.setFinalName("box/a", u"A1");
    bench.setFinalName("box/b", u"B1");
    bench.rename();
    ASSERT_EQ(bench.files(), (RenameBench::Tree{{"box/A1", "box/a"}, {"box/B1", "box/b"}}));
}

} // namespace

TEST(TakeBackLaws, UndoGivesTheTreeBeforeAndRedoTheTreeAfter) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const RandomPlan plan(seed);
        HistoryBench bench;
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

/// From each call on nothing works any more, in the run or in the undo of it, as if the program had been
/// killed there. What is left is taken back, or finished.
TEST(TakeBackLaws, WhatIsCutOffAtAnyCallIsTakenBackOrFinished) {
    using enum FileCall;
    const std::vector<std::vector<FileCall>> volumes{
        {}, {exchange}, {exchange, FileCall::rename}, {exchange, FileCall::rename, FileCall::link}};
    for (const std::vector<FileCall>& refused : volumes) {
        for (const bool cutsUndo : {false, true}) {
            for (const RunKind then : {RunKind::undo, RunKind::redo}) {
                bool wasCut = true;
                std::size_t number = 0;
                for (std::size_t k = 1; wasCut || ++number < RandomPlan::eventful.size();
                     k = wasCut ? k + 1 : 1) {
                    const unsigned seed = RandomPlan::eventful.at(number);
                    SCOPED_TRACE("plan " + std::to_string(seed) + ", " + std::to_string(refused.size()) +
                                 " refused, call " + std::to_string(k) +
                                 (cutsUndo ? " of the undo, then " : ", then ") +
                                 (then == RunKind::undo ? "undo" : "redo"));
                    const RandomPlan plan(seed);
                    HistoryBench bench;
                    bench.host.prompts.onNoRecord = [](const NoRecordQuestion&) {
                        return ConfirmationChoice::stop;
                    };
                    plan.setUp(bench);
                    FailingFileSystem failing;
                    for (const FileCall call : refused)
                        failing.failKind(call, EOPNOTSUPP);
                    const auto cut = [&](const std::function<void()>& run) {
                        const std::size_t before = failing.callCount();
                        failing.failCall(k, EIO, true);
                        run();
                        wasCut = failing.callCount() - before >= k;
                        failing.failCall(0, 0);
                    };
                    if (cutsUndo) {
                        bench.rename();
                        cut([&] { bench.takeBack(RunKind::undo); });
                    } else {
                        cut([&] { bench.rename(); });
                    }
                    bench.takeBack(then);
                    // Where there is nothing to finish, nothing was begun, or all was done.
                    const bool isBefore =
                        then == RunKind::undo || (!bench.refusal.empty() && bench.files() == plan.before());
                    ASSERT_EQ(bench.files(), isBefore ? plan.before() : plan.after())
                        << bench.refusal << testing::PrintToString(bench.failures);
                }
            }
        }
    }
}

TEST(TakeBack, LeavesAloneWhatIsNotTheItem) {
    struct Case {
        const char* what;
        std::function<void(const TemporaryFolder&)> happens;
        std::string reason;
        RenameBench::Tree left;
    };
    const std::vector<Case> cases = {
        {"gone",
         [](const auto& disk) { disk.remove("box/A1"); },
         "It is not to be found",
         {{"box/b", "box/b"}}},
        {"replaced by saving",
         [](const auto& disk) {
             disk.write("box/new", "new");
             std::filesystem::rename(disk.path("box/new"), disk.path("box/A1"));
         },
         "Another item lies in its place",
         {{"box/A1", "new"}, {"box/b", "box/b"}}},
        {"old name taken",
         [](const auto& disk) { disk.write("box/a", "intruder"); },
         "Another file with this name",
         {{"box/A1", "box/a"}, {"box/a", "intruder"}, {"box/b", "box/b"}}},
        {"moved elsewhere",
         [](const auto& disk) { std::filesystem::rename(disk.path("box/A1"), disk.path("elsewhere")); },
         "It is not to be found",
         {{"elsewhere", "box/a"}, {"box/b", "box/b"}}},
        {"folder moved",
         [](const auto& disk) { std::filesystem::rename(disk.path("box"), disk.path("other")); },
         "Its folder is not to be found.",
         {{"other/A1", "box/a"}, {"other/B1", "box/b"}}},
        {"folder replaced",
         [](const auto& disk) {
             std::filesystem::rename(disk.path("box"), disk.path("other"));
             disk.write("box/A1", "theirs");
         },
         "Its folder is another one",
         {{"other/A1", "box/a"}, {"other/B1", "box/b"}, {"box/A1", "theirs"}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        HistoryBench bench;
        renameTwo(bench);
        c.happens(bench.disk);
        bench.takeBack(RunKind::undo);
        ASSERT_FALSE(bench.failures.empty()) << bench.refusal;
        EXPECT_THAT(bench.failures.front(), HasSubstr(c.reason));
        EXPECT_EQ(bench.files(), c.left);
    }
    // A neighbour has exchanged the two: each is known under the other's name.
    HistoryBench bench;
    renameTwo(bench);
    std::filesystem::rename(bench.disk.path("box/A1"), bench.disk.path("box/t"));
    std::filesystem::rename(bench.disk.path("box/B1"), bench.disk.path("box/A1"));
    std::filesystem::rename(bench.disk.path("box/t"), bench.disk.path("box/B1"));
    EXPECT_EQ(bench.takeBack(RunKind::undo), 0);
    EXPECT_EQ(bench.failures.size(), 2U);
}

TEST(TakeBack, TakesWhatWasSavedAnewWhenToldTo) {
    HistoryBench bench;
    renameTwo(bench);
    bench.disk.write("box/new", "new");
    std::filesystem::rename(bench.disk.path("box/new"), bench.disk.path("box/A1"));
    EXPECT_EQ(bench.takeBack(RunKind::undo, true), 2);
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"box/a", "new"}, {"box/b", "box/b"}}));
}

TEST(TakeBack, KnowsWhatWasSavedAnewBeforeTheRun) {
    HistoryBench bench;
    bench.makeAndRead({"box/", "box/a"});
    bench.disk.write("box/new", "new");
    std::filesystem::rename(bench.disk.path("box/new"), bench.disk.path("box/a"));
    bench.setFinalName("box/a", u"A1");
    bench.rename();
    ASSERT_EQ(bench.files(), (RenameBench::Tree{{"box/A1", "new"}}));
    EXPECT_EQ(bench.takeBack(RunKind::undo), 1);
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"box/a", "new"}}));
}

TEST(TakeBack, NamesTheLaterRunThatRenamedAgain) {
    HistoryBench bench;
    renameTwo(bench);
    RecordText later(bench.records.read(bench.newestRecord()));
    std::erase_if(later.lines, [](const std::string& line) { return line.ends_with("\tb\tB1\t"); });
    for (std::string& line : later.lines) {
        if (const std::size_t at = line.find("\ta\tA1\t"); at != std::string::npos)
            line.replace(at, 6, "\tA1\tagain\t");
    }
    bench.records.write("99990101T000000.000000-1.run", later.withChecksums());
    std::filesystem::rename(bench.disk.path("box/A1"), bench.disk.path("box/again"));
    const std::string first = RunHistory(bench.records.path()).runs().back().name;
    TakeBackResult result;
    bench.host.engine.processTakeBack(
        bench.host.progress,
        {.chosen = std::get<ChosenRun>(RunHistory(bench.records.path()).choose(RunKind::undo, first))},
        [&](EngineHost&, const TakeBackResult& found) { result = found; });
    bench.host.waitUntilIdle();
    ASSERT_EQ(result.errors.size(), 1U);
    EXPECT_THAT(result.errors.front().message,
                HasSubstr("The run 99990101T000000.000000-1 has renamed it again."));
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"box/again", "box/a"}, {"box/b", "box/b"}}));
}

/// Where the kernel's flag is refused, a killed run leaves one step half done, and only that is cleared.
TEST(TakeBack, ClearsTheOneStepThatWasCutInHalf) {
    struct Case {
        const char* what;
        std::function<void(const TemporaryFolder&)> happens;
        bool hasNoFlag = true;
        RenameBench::Tree afterUndo;
    };
    const auto putBack = [](const TemporaryFolder& disk, const char* now, const char* before) {
        std::filesystem::rename(disk.path(now), disk.path(before));
    };
    const std::vector<Case> cases = {
        {"a second name",
         [](const auto& disk) { std::filesystem::create_hard_link(disk.path("box/A1"), disk.path("box/a")); },
         true, untouched({"box/a", "box/b"})},
        {"an empty reservation",
         [&](const auto& disk) {
             putBack(disk, "box/A1", "box/a");
             disk.write("box/A1", "");
         },
         true, untouched({"box/a", "box/b"})},
        {"the same where the flag is known",
         [&](const auto& disk) {
             putBack(disk, "box/A1", "box/a");
             disk.write("box/A1", "");
         },
         false,
         {{"box/a", "box/a"}, {"box/A1", ""}, {"box/b", "box/b"}}},
        {"something in it",
         [&](const auto& disk) {
             putBack(disk, "box/A1", "box/a");
             disk.write("box/A1", "x");
         },
         true,
         {{"box/a", "box/a"}, {"box/A1", "x"}, {"box/b", "box/b"}}},
        {"more than one",
         [&](const auto& disk) {
             putBack(disk, "box/A1", "box/a");
             putBack(disk, "box/B1", "box/b");
             disk.write("box/A1", "");
             disk.write("box/B1", "");
         },
         true,
         {{"box/a", "box/a"}, {"box/A1", ""}, {"box/b", "box/b"}, {"box/B1", ""}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        HistoryBench bench;
        renameTwo(bench);
        bench.interruptNewest(c.hasNoFlag);
        c.happens(bench.disk);
        bench.takeBack(RunKind::undo);
        EXPECT_EQ(bench.files(), c.afterUndo) << bench.refusal;
    }
}

TEST(RunJournal, ARunThatCantBeRecordedIsAskedAbout) {
    for (const bool goesOn : {true, false}) {
        HistoryBench bench;
        bench.host.engine.setHistoryPlace({bench.records.write("file"), "test"});
        bench.host.prompts.onNoRecord = [&](const NoRecordQuestion&) {
            return goesOn ? ConfirmationChoice::one : ConfirmationChoice::stop;
        };
        bench.makeAndRead({"a"});
        bench.setFinalName("a", u"b");
        bench.rename();
        EXPECT_EQ(bench.files(), (RenameBench::Tree{{goesOn ? "b" : "a", "a"}}));
    }
}

/// Whatever call fails while the plan is written: no record is left behind that says more than was done.
TEST(RunJournal, AFailureLeavesNoHalfRecord) {
    for (const FileCall call : {FileCall::write, FileCall::sync}) {
        for (std::size_t number = 1; number <= 2; ++number) {
            HistoryBench bench;
            bench.host.prompts.onNoRecord = [](const NoRecordQuestion&) { return ConfirmationChoice::stop; };
            bench.makeAndRead({"a"});
            bench.setFinalName("a", u"b");
            FailingFileSystem failing;
            failing.failKind(call, ENOSPC, number);
            bench.rename();
            const bool hasFailed = failing.failureCount() > 0;
            EXPECT_EQ(bench.files().begin()->first, hasFailed ? "a" : "b");
            EXPECT_EQ(bench.states().size(), hasFailed ? 0U : 1U);
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
