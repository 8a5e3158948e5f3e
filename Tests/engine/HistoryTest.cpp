#include "RandomPlan.h"
#include "common/Testing.h"
#include "engine/history/RunHistory.h"
#include "engine/history/RunRecordReader.h"
#include "engine/history/TakeBack.h"
#include "support/values/Crc32.h"

// Records of runs, what is chosen from them, and what taking a run back leaves.

namespace tavrin::test {

namespace {

/// The text of a record, to be changed line by line.
struct RecordText {
    std::vector<std::string> lines;

    /// The lines again, each "block" line with the count and checksum of those before it.
    [[nodiscard]] std::string withChecksums() const {
        std::string text;
        std::size_t start = 0;
        std::size_t count = 0;
        for (const std::string& line : lines) {
            ++count;
            if (line.starts_with("block")) {
                const auto sum = crc32(std::string_view(text).substr(start));
                text += fmt::format("block\t{}\t{}\n", count - 1, sum);
                start = text.size();
                count = 0;
            } else {
                text += line + "\n";
            }
        }
        return text;
    }
};

/// A record of three blocks.
RecordText threeBlocks() {
    RecordText text;
    text.lines = {"tavrin run 1", "run\t2026-11-21T14:22:33+01:00\t4711\tboot\ttvrn\trename\t", "recipe\t"};
    for (unsigned item = 0; item < 6; ++item) {
        const RecordedFolder folder{item / 2, {7, 8}, 9, 0.125, "/t\tab/new\nline"};
        if (item % 2 == 0)
            runLine::print(folder, text.lines.emplace_back());
        const std::string name = "\\t\t\n\xFF" + std::to_string(item);
        runLine::print(RecordedItem{folder.number,
                                    11 + item,
                                    {},
                                    FileStatus::Kind::file,
                                    name,
                                    name + " new",
                                    item % 2 == 0 ? "" : "aside",
                                    RecordedItem::Look{5, 1e9 / 3}},
                       text.lines.emplace_back());
        if (item % 2 == 1)
            text.lines.emplace_back("block");
    }
    return text;
}

struct Read {
    std::vector<std::string> items; ///< printed anew
    bool isDamaged = false;
    bool hasEnd = false;
};

Read readBack(const TemporaryFolder& folder, const std::string& text) {
    RunRecordReader reader(folder.write("r.run", text));
    reader.examine();
    Read read{{}, reader.isDamaged(), reader.end().has_value()};
    reader.visitItems([&](const RecordedItem& item, std::size_t number) {
        EXPECT_EQ(number, read.items.size());
        EXPECT_LT(item.folder, reader.folders().size());
        runLine::print(item, read.items.emplace_back());
        return true;
    });
    EXPECT_EQ(read.items.size(), reader.itemCount());
    return read;
}

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
            failures.push_back(error.message + ": " + relative(error.path));
        for (const ProblemReport& report : reports)
            failures.push_back(report.message + ": " + relative(report.fullPath));
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
        RecordText text{split(records.read(name), '\n')};
        if (change == Change::cut || change == Change::cutWhereTheFlagIsRefused)
            text.lines.pop_back();
        if (change == Change::cutWhereTheFlagIsRefused) {
            FileStatus status;
            EXPECT_EQ(FileSystem::sharedInstance().status(folder.path(), status), 0);
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

/// Whatever happens to a record, what is read from it was written: whole blocks from its front. And a loss
/// that no cut-off can explain is told.
TEST(RunRecord, OnlyWholeBlocksCountHoweverItIsCutOrSpoiled) {
    const TemporaryFolder folder(RenameBench::inMemory());
    RecordText text = threeBlocks();
    std::vector<std::string> all = text.lines;
    std::erase_if(all, [](const std::string& line) { return !line.starts_with("item\t"); });
    const std::string plan = text.withChecksums();
    text.lines.emplace_back("done\t6\t0\t2026-11-21T14:22:34+01:00\tended");
    const std::string whole = text.withChecksums();
    const Read unspoiled = readBack(folder, whole);
    ASSERT_EQ(unspoiled.items, all);
    ASSERT_TRUE(unspoiled.hasEnd && !unspoiled.isDamaged);

    const auto expectPrefix = [&](const Read& read) {
        ASSERT_EQ(read.items.size() % 2, 0U);
        ASSERT_TRUE(std::equal(read.items.begin(), read.items.end(), all.begin()));
    };
    std::size_t blocksOfLast = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        SCOPED_TRACE(at);
        const Read cut = readBack(folder, whole.substr(0, at));
        expectPrefix(cut);
        EXPECT_FALSE(cut.isDamaged) << "nothing was begun";
        EXPECT_GE(cut.items.size(), blocksOfLast);
        blocksOfLast = cut.items.size();
        const Read zeros = readBack(folder, whole.substr(0, at) + std::string(whole.size() - at, '\0'));
        EXPECT_EQ(zeros.items, cut.items);
        std::string flipped = whole;
        flipped[at] = static_cast<char>(flipped[at] ^ 1);
        const Read spoiled = readBack(folder, flipped);
        expectPrefix(spoiled);
        // Without the line feed between them the last two lines look like one that was cut off.
        if (at + 1 < plan.size()) {
            EXPECT_TRUE(spoiled.isDamaged);
        } else if (at >= plan.size()) {
            EXPECT_EQ(spoiled.items, all);
        }
    }
    EXPECT_EQ(blocksOfLast, all.size());
}

TEST(RunRecord, WhatIsNoRecordOfOursIsTold) {
    const TemporaryFolder folder;
    const std::string good = threeBlocks().withChecksums();
    folder.write("1-1.run", good);
    folder.write("2-1.run", "tavrin run 2\n" + good);
    folder.link("3-1.run", folder.path("1-1.run"));
    folder.makeFolder("4-1.run");
    folder.write("5-1.run", std::string(200000, 'x') + "\nblock\t1\t1\n");
    folder.write("6-1.run", good);
    const bool isRoot = ::geteuid() == 0;
    if (isRoot)
        ASSERT_EQ(::chown(folder.path("6-1.run").c_str(), 4711, 4711), 0);
    else
        std::filesystem::permissions(folder.path("6-1.run"), std::filesystem::perms::none);
    const RunHistory history(folder.path());
    std::vector<std::string> problems;
    for (const PastRun& run : history.runs())
        problems.push_back(run.problem);
    EXPECT_THAT(problems,
                testing::ElementsAre(testing::StartsWith(isRoot ? "It belongs" : "It can't be read"),
                                     "It is no record of a run.", "It is no file.", "It is a link.",
                                     "It was written by a newer version of Tavrin.", ""));
    const auto chosen = history.choose(RunKind::undo, "");
    EXPECT_TRUE(std::get<std::string>(chosen).ends_with("The next older one is 1-1."));
    EXPECT_EQ(std::get<ChosenRun>(history.choose(RunKind::undo, "1-1")).run.name, "1-1");
    EXPECT_TRUE(std::holds_alternative<std::string>(history.choose(RunKind::undo, "-1")));
}

/// Which run is next, after runs that ended, were stopped, or were cut off: "rename", "undo" or "redo" with
/// the number of the run it is of, and how it ended: "all", "none" and "some" of its items changed, "stopped"
/// or "cut". What is undone and redone next, to which names; and the states, the oldest first.
TEST(RunHistory, ChoosesWhatIsNext) {
    const char* const cases[][4] = {
        {"", "", "", ""},
        {"rename:all", "1 old", "", "whole"},
        {"rename:none", "", "", "whole"},
        {"rename:all rename:all", "2 old", "", "whole whole"},
        {"rename:all undo1:all", "", "2 old", "undone whole"},
        {"rename:all rename:all undo2:all", "1 old", "3 old", "whole undone whole"},
        {"rename:all undo1:all redo2:all", "3 old", "", "whole undone whole"},
        {"rename:all undo1:all redo2:all undo3:all", "", "4 old", "undone whole undone whole"},
        // cut off or stopped: back, or to the end
        {"rename:cut", "1 old", "1 new", "interrupted"},
        {"rename:stopped", "1 old", "1 new", "stopped"},
        {"rename:cut redo1:all", "1 old", "", "whole whole"},
        {"rename:cut undo1:all", "", "1 new", "undone whole"},
        {"rename:stopped undo1:cut redo1:cut", "1 old", "1 new", "stopped interrupted interrupted"},
        {"rename:all undo1:cut", "2 new", "2 old", "whole interrupted"},
        {"rename:all undo1:cut undo2:all", "", "2 old", "undone whole whole"},
        {"rename:all undo1:stopped redo2:all", "2 new", "", "whole undone whole"},
        // nothing could be brought back: it stays the next
        {"rename:all undo1:none", "1 old", "", "whole whole"},
        {"rename:all undo1:some", "", "2 old", "undone whole"},
    };
    const std::map<std::string, const char*> ends{
        {"all", "done\t3\t0\t2026-11-21T14:22:34+01:00\tended"},
        {"none", "done\t0\t3\t2026-11-21T14:22:34+01:00\tended"},
        {"some", "done\t2\t1\t2026-11-21T14:22:34+01:00\tended"},
        {"stopped", "done\t3\t0\t2026-11-21T14:22:34+01:00\tstopped"}};
    for (const auto& [runs, undo, redo, wantedStates] : cases) {
        SCOPED_TRACE(runs);
        const TemporaryFolder folder;
        int number = 0;
        for (const std::string& run : split(runs)) {
            const std::size_t colon = run.find(':');
            const std::size_t of = std::min(run.find_first_of("123"), colon);
            RecordText text = threeBlocks();
            text.lines[1] = fmt::format("run\t2026-11-21T14:22:33+01:00\t1\tb\ttvrn\t{}\t{}",
                                        run.substr(0, of), run.substr(of, colon - of));
            if (const auto end = ends.find(run.substr(colon + 1)); end != ends.end())
                text.lines.emplace_back(end->second);
            folder.write(std::to_string(++number) + ".run", text.withChecksums());
        }
        const RunHistory history(folder.path());
        const auto next = [&](RunKind what) {
            const auto words = [](const ChosenRun* run) {
                return run ? run->run.name + (run->toNewNames ? " new" : " old") : std::string();
            };
            const auto chosen = history.choose(what, "");
            const auto outlook = history.outlook(what);
            EXPECT_EQ(words(std::get_if<ChosenRun>(&chosen)), words(outlook ? &*outlook : nullptr));
            return words(outlook ? &*outlook : nullptr);
        };
        EXPECT_EQ(next(RunKind::undo), undo);
        EXPECT_EQ(next(RunKind::redo), redo);
        std::string states;
        for (const PastRun& run : history.runs())
            states.insert(0, std::string(run.state()) + (states.empty() ? "" : " "));
        EXPECT_EQ(states, wantedStates);
    }
}

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
    for (const bool cutsUndo : {false, true}) {
        for (const RunKind then : {RunKind::undo, RunKind::redo}) {
            SCOPED_TRACE(fmt::format("{}, then {}", cutsUndo, then == RunKind::undo ? "undo" : "redo"));
            atEachCall([&](const RandomPlan& plan, const Volume& volume, std::size_t call) {
                HistoryBench bench(RenameBench::inMemory());
                bench.host.prompts.onNoRecord = [](const auto&) { return ConfirmationChoice::stop; };
                plan.setUp(bench);
                FailingFileSystem disk;
                volume.setUp(disk);
                if (cutsUndo)
                    bench.rename();
                std::size_t changes = 0;
                disk.before = [&](const FileEvent& event) {
                    changes += event.changesDisk() ? 1 : 0;
                    return changes >= call ? EIO : 0;
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
                return changes >= call;
            });
        }
    }
}

/// What somebody does between a run and its undo, what is said of it, and what is left.
TEST(TakeBack, LeavesAloneWhatIsNotTheItem) {
    using enum HistoryBench::Change;
    struct Case {
        const char *what, *happens, *reasons, *left;
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
        if (event.call == FileCall::sync && !bench.folder.kind("other"))
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

/// The oldest goes where all are too large together; the newest stays.
TEST(RunHistory, BoundsItsSize) {
    HistoryBench bench;
    for (const char* name : {"a", "b", "c"}) {
        bench.plan(std::string(name) + ">" + name + name);
        bench.rename();
        const std::string record = bench.records.path(bench.newestRecord());
        const std::string text = bench.records.read(bench.newestRecord());
        std::filesystem::resize_file(record, 100U << 20); // a hole that takes no room
        std::ofstream(record, std::ios::app) << '\n' << text.substr(text.rfind("done\t"));
    }
    RunHistory(bench.records.path()).prune();
    EXPECT_EQ(bench.states().size(), 2U);
}

TEST(RunHistory, TellsOfARunThatTheEndOfTheSessionHasCutOff) {
    for (const ConfirmationChoice answer : {ConfirmationChoice::one, ConfirmationChoice::leaveOut}) {
        HistoryBench bench;
        bench.host.set("interactiveMode", 1);
        bench.host.prompts.onRename = [&](const RenameQuestion&) {
            bench.host.engine.requestStopAtSessionEnd();
            return answer;
        };
        bench.plan("a>A1 b>B1");
        bench.rename();
        const RunHistory history(bench.records.path());
        EXPECT_EQ(history.interruptedRun().has_value(), answer == ConfirmationChoice::one);
        EXPECT_EQ(bench.takeBack(RunKind::undo), answer == ConfirmationChoice::one ? 1 : 0);
        EXPECT_EQ(bench.files(), tree("a b"));
        EXPECT_FALSE(history.interruptedRun());
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
