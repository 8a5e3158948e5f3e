#include "RecordText.h"
#include "common/TemporaryFolder.h"
#include "engine/history/RunHistory.h"
#include "engine/history/RunRecordReader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace tavrin::test {

namespace {

/// A record of three blocks.
RecordText threeBlocks() {
    RecordText text;
    text.lines = {"tavrin run 1", "run\t2026-11-21T14:22:33+01:00\t4711\tboot\ttvrn\trename\t", "recipe\t"};
    int item = 0;
    for (int block = 0; block < 3; ++block) {
        RecordedFolder folder{static_cast<std::uint32_t>(block), {7, 8}, 9, 0.125, "/t\tab/new\nline"};
        runLine::print(folder, text.lines.emplace_back());
        for (int i = 0; i < 2; ++i) {
            const std::string name = "\\t\t\n\xFF" + std::to_string(item++);
            runLine::print(RecordedItem{folder.number,
                                        10U + static_cast<unsigned>(item),
                                        {},
                                        FileStatus::Kind::file,
                                        name,
                                        name + " new",
                                        i == 0 ? "" : "aside",
                                        RecordedItem::Look{5, 1e9 / 3}},
                           text.lines.emplace_back());
        }
        text.lines.emplace_back("block");
    }
    return text;
}

struct Read {
    std::vector<std::string> items; ///< printed anew
    bool isDamaged = false;
    bool hasEnd = false;
    std::string problem;
};

Read readBack(const TemporaryFolder& folder, const std::string& text) {
    folder.write("r.run", text);
    RunRecordReader reader(folder.path("r.run"));
    reader.examine();
    Read read{{}, reader.isDamaged(), reader.end().has_value(), reader.problem()};
    reader.visitItems([&](const RecordedItem& item, std::size_t number) {
        EXPECT_EQ(number, read.items.size());
        EXPECT_LT(item.folder, reader.folders().size());
        runLine::print(item, read.items.emplace_back());
        return true;
    });
    EXPECT_EQ(read.items.size(), reader.itemCount());
    return read;
}

std::vector<std::string> itemLines(const RecordText& text) {
    std::vector<std::string> found;
    for (const std::string& line : text.lines) {
        if (line.starts_with("item\t"))
            found.push_back(line);
    }
    return found;
}

} // namespace

/// Whatever happens to a record, what is read from it was written: whole blocks from its front. And a loss
/// that no cut-off can explain is told.
TEST(RunRecord, OnlyWholeBlocksCountHoweverItIsCutOrSpoiled) {
    const TemporaryFolder folder;
    RecordText text = threeBlocks();
    const std::vector<std::string> all = itemLines(text);
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
    const auto runs = RunHistory(folder.path()).runs();
    ASSERT_EQ(runs.size(), 6U);
    EXPECT_TRUE(runs[0].problem.starts_with(isRoot ? "It belongs" : "It can't be read")) << runs[0].problem;
    EXPECT_EQ(runs[1].problem, "It is no record of a run.");
    EXPECT_EQ(runs[2].problem, "It is no file.");
    EXPECT_EQ(runs[3].problem, "It is a link.");
    EXPECT_EQ(runs[4].problem, "It was written by a newer version of Tavrin.");
    EXPECT_EQ(runs[5].problem, "");
    const auto chosen = RunHistory(folder.path()).choose(RunKind::undo, "");
    EXPECT_TRUE(std::get<std::string>(chosen).ends_with("The next older one is 1-1."))
        << std::get<0>(chosen).run.name;
    EXPECT_EQ(std::get<ChosenRun>(RunHistory(folder.path()).choose(RunKind::undo, "1-1")).run.name, "1-1");
    EXPECT_TRUE(std::holds_alternative<std::string>(RunHistory(folder.path()).choose(RunKind::undo, "-1")));
}

/// Which run is next, after runs that ended, were stopped, or were cut off.
TEST(RunHistory, ChoosesWhatIsNext) {
    struct Run {
        std::string what;
        std::string of;
        std::string end; ///< "3 0 ended" changed, failed, how; empty: interrupted
    };
    struct Case {
        std::vector<Run> runs; ///< "1", "2", ... in order
        std::string undo;      ///< "1 old", "2 new", or empty
        std::string redo;
        std::string states; ///< oldest first
    };
    const std::string ended = "3\t0\tended";
    const std::string stopped = "3\t0\tstopped";
    const std::vector<Case> cases = {
        {{}, "", "", ""},
        {{{"rename", "", ended}}, "1 old", "", "whole"},
        {{{"rename", "", "0\t3\tended"}}, "", "", "whole"},
        {{{"rename", "", ended}, {"rename", "", ended}}, "2 old", "", "whole whole"},
        {{{"rename", "", ended}, {"undo", "1", ended}}, "", "2 old", "undone whole"},
        {{{"rename", "", ended}, {"rename", "", ended}, {"undo", "2", ended}},
         "1 old",
         "3 old",
         "whole undone whole"},
        {{{"rename", "", ended}, {"undo", "1", ended}, {"redo", "2", ended}},
         "3 old",
         "",
         "whole undone whole"},
        {{{"rename", "", ended}, {"undo", "1", ended}, {"redo", "2", ended}, {"undo", "3", ended}},
         "",
         "4 old",
         "undone whole undone whole"},
        // cut off or stopped: back, or to the end
        {{{"rename", "", ""}}, "1 old", "1 new", "interrupted"},
        {{{"rename", "", stopped}}, "1 old", "1 new", "stopped"},
        {{{"rename", "", ""}, {"redo", "1", ended}}, "1 old", "", "whole whole"},
        {{{"rename", "", ""}, {"undo", "1", ended}}, "", "1 new", "undone whole"},
        {{{"rename", "", stopped}, {"undo", "1", ""}, {"redo", "1", ""}},
         "1 old",
         "1 new",
         "stopped interrupted interrupted"},
        {{{"rename", "", ended}, {"undo", "1", ""}}, "2 new", "2 old", "whole interrupted"},
        {{{"rename", "", ended}, {"undo", "1", ""}, {"undo", "2", ended}}, "", "2 old", "undone whole whole"},
        {{{"rename", "", ended}, {"undo", "1", stopped}, {"redo", "2", ended}},
         "2 new",
         "",
         "whole undone whole"},
        // nothing could be brought back: it stays the next
        {{{"rename", "", ended}, {"undo", "1", "0\t3\tended"}}, "1 old", "", "whole whole"},
        {{{"rename", "", ended}, {"undo", "1", "2\t1\tended"}}, "", "2 old", "undone whole"},
    };
    for (std::size_t number = 0; number < cases.size(); ++number) {
        SCOPED_TRACE("case " + std::to_string(number));
        const Case& c = cases[number];
        const TemporaryFolder folder;
        for (std::size_t i = 0; i < c.runs.size(); ++i) {
            RecordText text = threeBlocks();
            text.lines[1] =
                "run\t2026-11-21T14:22:33+01:00\t1\tb\ttvrn\t" + c.runs[i].what + "\t" + c.runs[i].of;
            const std::string& end = c.runs[i].end;
            if (!end.empty())
                text.lines.push_back("done\t" + end.substr(0, 4) + "2026-11-21T14:22:34+01:00" +
                                     end.substr(3));
            folder.write(std::to_string(i + 1) + ".run", text.withChecksums());
        }
        const RunHistory history(folder.path());
        const auto next = [&](RunKind what) {
            const auto chosen = history.choose(what, "");
            const auto* run = std::get_if<ChosenRun>(&chosen);
            const auto outlook = history.outlook(what);
            EXPECT_EQ(run ? run->run.name : "", outlook ? outlook->run.name : "");
            EXPECT_EQ(run && run->toNewNames, outlook && outlook->toNewNames);
            return run ? run->run.name + (run->toNewNames ? " new" : " old") : std::string();
        };
        EXPECT_EQ(next(RunKind::undo), c.undo);
        EXPECT_EQ(next(RunKind::redo), c.redo);
        std::string states;
        for (const PastRun& run : history.runs())
            states.insert(0, std::string(run.state()) + (states.empty() ? "" : " "));
        EXPECT_EQ(states, c.states);
    }
}

} // namespace tavrin::test
