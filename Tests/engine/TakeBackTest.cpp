#include "engine/history/TakeBack.h"

#include "RandomPlan.h"
#include "RecordText.h"
#include "common/FailingFileSystem.h"
#include "engine/history/RunHistory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace tavrin::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A bench whose runs leave records, in a folder of their own.
class HistoryBench : public RenameBench {
  public:
    explicit HistoryBench(const std::string& place = "") : RenameBench({}, place), records(place) {
        host.engine.setHistoryPlace({records.path(), "test"});
    }

    TemporaryFolder records;
    /// What the last undo or redo could not do, "message: name" by names relative to the folder.
    std::vector<std::string> failures;
    std::string refusal; ///< why it did not begin; empty where it did
    std::string chosen;  ///< the run to undo or redo; empty: what is next

    /// Undoes or redoes it, as a program started anew would; the number of changed names.
    int takeBack(RunKind what, bool takesReplaced = false) {
        failures.clear();
        refusal.clear();
        reports.clear();
        const auto run = RunHistory(records.path()).choose(what, chosen);
        if (const auto* reason = std::get_if<std::string>(&run)) {
            refusal = *reason;
            return 0;
        }
        TakeBackResult result;
        host.engine.processTakeBack(host.progress,
                                    {.chosen = std::get<ChosenRun>(run), .takesReplaced = takesReplaced},
                                    [&](EngineHost&, const TakeBackResult& found) { result = found; });
        host.waitUntilIdle();
        for (const ProcessingError& error : result.errors)
            failures.push_back(error.message + ": " + error.path.substr(disk.path().size() + 1));
        for (const ProblemReport& report : reports)
            failures.push_back(report.message + ": " + report.fullPath.substr(disk.path().size() + 1));
        return result.changed;
    }

    /// The state of each run, newest first.
    [[nodiscard]] std::vector<std::string> states() const {
        std::vector<std::string> found;
        for (const PastRun& run : RunHistory(records.path()).runs())
            found.emplace_back(run.state());
        return found;
    }

    /// The file of the newest record, relative to the folder of records.
    [[nodiscard]] std::string newestRecord() const {
        return RunHistory(records.path()).runs().at(0).name + ".run";
    }

    /// What is made of the newest record: it is cut off before its end as if the run had been killed, also
    /// with folders that can't refuse a taken name, its run is a much earlier one, or a later one has given
    /// "A1" the name "again".
    enum class Change { none, cut, cutWhereTheFlagIsRefused, isOld, renamedAgain };
    void changeRecord(Change change) {
        std::string name = newestRecord();
        RecordText text(records.read(name));
        if (change == Change::cut || change == Change::cutWhereTheFlagIsRefused)
            text.lines.pop_back();
        if (change == Change::cutWhereTheFlagIsRefused) {
            FileStatus status;
            EXPECT_EQ(FileSystem::sharedInstance().status(disk.path(), status), 0);
            text.lines.push_back("noflag\t" + std::to_string(status.identity.device));
        }
        if (change == Change::isOld)
            text.lines.at(1).replace(4, 4, "2001");
        if (change == Change::renamedAgain) {
            chosen = name.substr(0, name.size() - 4);
            name = "99990101T000000.000000-1.run";
            std::erase_if(text.lines, [](const std::string& line) { return line.ends_with("\tb\tB1\t"); });
            for (std::string& line : text.lines) {
                if (const std::size_t at = line.find("\ta\tA1\t"); at != std::string::npos)
                    line.replace(at, 6, "\tA1\tagain\t");
            }
        }
        records.write(name, text.withChecksums());
    }
};

/// Files "a" and "b" that are to be "A1" and "B1", in a folder "box" that stays.
void renameTwo(HistoryBench& bench) {
    bench.plan("box/a>A1 box/b>B1");
    bench.rename();
    ASSERT_EQ(bench.files(), tree("box/A1=box/a box/B1=box/b"));
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
        SCOPED_TRACE(fmt::format("{}, plan {}, change {} of the {}, then {}", volume.title, seed, k,
                                 cutsUndo ? "undo" : "run", then == RunKind::undo ? "undo" : "redo"));
        const RandomPlan plan(seed, volume.ignoresCase);
        HistoryBench bench(RenameBench::inMemory());
        bench.host.prompts.onNoRecord = [](const NoRecordQuestion&) { return ConfirmationChoice::stop; };
        plan.setUp(bench);
        FailingFileSystem disk;
        volume.setUp(disk);
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
            for (const auto& [cutsUndo, then] : {std::pair{false, RunKind::undo},
                                                 {false, RunKind::redo},
                                                 {true, RunKind::undo},
                                                 {true, RunKind::redo}}) {
                std::size_t k = 1;
                while (cutAt(k, volume, seed, cutsUndo, then))
                    ++k;
                EXPECT_GT(k, 5U) << "hardly anything was changed";
            }
        }
    }
}

/// What somebody does between a run and its undo, what is said of it, and what is left.
TEST(TakeBack, LeavesAloneWhatIsNotTheItem) {
    using enum HistoryBench::Change;
    struct Case {
        const char* what;
        const char* happens;
        const char* reasons;
        const char* left;
        HistoryBench::Change change = none;
        bool takesReplaced = false;
    };
    const std::map<std::string, std::string> reasons{
        {"gone", "It is not to be found"},
        {"unlike", "Another item lies in its place"},
        {"unclear", "More than one item looks like it"},
        {"taken", "Another file with this name"},
        {"again", "It is not to be found: it has been removed, moved or renamed. The run "
                  "99990101T000000.000000-1 has renamed it again."},
        {"nofolder", "Its folder is not to be found."},
        {"otherfolder", "Its folder is another one"}};
    const Case cases[] = {
        {"gone", "remove box/A1", "gone", "box/b"},
        {"replaced by saving", "save box/A1", "unlike", "box/A1=new box/b"},
        {"replaced by saving, and taken for it", "save box/A1", "", "box/a=new box/b", none, true},
        {"old name taken", "write box/a intruder", "taken", "box/A1=box/a box/a=intruder box/b"},
        {"moved elsewhere", "move box/A1 elsewhere", "gone", "elsewhere=box/a box/b"},
        {"renamed by a later run", "move box/A1 box/again", "again", "box/again=box/a box/b", renamedAgain},
        {"folder moved", "move box other", "nofolder nofolder", "other/A1=box/a other/B1=box/b"},
        {"folder replaced", "move box other, write box/A1 theirs", "otherfolder otherfolder",
         "other/A1=box/a other/B1=box/b box/A1=theirs"},
        {"exchanged: each is known under the other's name",
         "move box/A1 box/t, move box/B1 box/A1, move box/t box/B1", "unlike unlike",
         "box/A1=box/b box/B1=box/a"},
        {"younger than the run, whose number it has", "", "unlike unlike", "box/A1=box/a box/B1=box/b",
         isOld},
        // Where the kernel's flag is refused, a killed run leaves one step half done; only that is cleared.
        {"a second name", "second box/A1 box/a", "", "box/a box/b", cutWhereTheFlagIsRefused},
        {"an empty reservation", "move box/A1 box/a, write box/A1", "", "box/a box/b",
         cutWhereTheFlagIsRefused},
        {"the same where the flag is known", "move box/A1 box/a, write box/A1", "", "box/a box/A1= box/b",
         cut},
        {"something in it", "move box/A1 box/a, write box/A1 x", "", "box/a box/A1=x box/b",
         cutWhereTheFlagIsRefused},
        {"more than one", "move box/A1 box/a, write box/A1, move box/B1 box/b, write box/B1",
         "unclear unclear", "box/a box/A1= box/b box/B1=", cutWhereTheFlagIsRefused},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        HistoryBench bench;
        renameTwo(bench);
        bench.changeRecord(c.change);
        bench.happens(c.happens);
        bench.takeBack(RunKind::undo, c.takesReplaced);
        std::vector<testing::Matcher<std::string>> told;
        for (const std::string& reason : split(c.reasons))
            told.push_back(testing::HasSubstr(reasons.at(reason)));
        EXPECT_THAT(bench.failures, testing::ElementsAreArray(told)) << bench.refusal;
        EXPECT_EQ(bench.files(), tree(c.left));
    }
}

TEST(TakeBack, LeavesAloneAFolderThatIsReplacedAfterTheLook) {
    HistoryBench bench;
    renameTwo(bench);
    FailingFileSystem disk;
    disk.before = [&](const FileEvent& event) {
        if (event.call == FileCall::sync && !bench.disk.kind("other"))
            bench.happens("move box other, folder box, second other/A1 box/A1, second other/B1 box/B1");
        return 0;
    };
    EXPECT_EQ(bench.takeBack(RunKind::undo), 0);
    EXPECT_EQ(bench.files(), tree("box/A1=box/a box/B1=box/b other/A1=box/a other/B1=box/b"));
}

TEST(TakeBack, KnowsWhatWasSavedAnewBeforeTheRun) {
    HistoryBench bench;
    bench.plan("box/a>A1");
    bench.happens("save box/a");
    bench.rename();
    ASSERT_EQ(bench.files(), tree("box/A1=new"));
    EXPECT_EQ(bench.takeBack(RunKind::undo), 1);
    EXPECT_EQ(bench.files(), tree("box/a=new"));
}

/// Whatever call fails while the plan is written, no half record is left behind, and the user decides.
TEST(RunJournal, ARunThatCantBeRecordedIsAskedAbout) {
    for (const auto choice : {ConfirmationChoice::one, ConfirmationChoice::stop}) {
        for (const auto& [call, number] : {std::pair{FileCall::makeFolders, 1U},
                                           {FileCall::write, 1U},
                                           {FileCall::write, 2U},
                                           {FileCall::sync, 1U},
                                           {FileCall::sync, 2U}}) {
            HistoryBench bench;
            bench.host.prompts.onNoRecord = [&](const NoRecordQuestion&) { return choice; };
            bench.plan("a>b");
            if (call == FileCall::makeFolders)
                bench.host.engine.setHistoryPlace({bench.records.write("file"), "test"});
            FailingFileSystem failing;
            failing.failKind(call, ENOSPC, number);
            bench.rename();
            const bool hasFailed = failing.failureCount() > 0 || call == FileCall::makeFolders;
            EXPECT_EQ(bench.files(), tree(choice == ConfirmationChoice::one || !hasFailed ? "b=a" : "a"));
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
