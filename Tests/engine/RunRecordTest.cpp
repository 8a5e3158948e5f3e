#include "RecordText.h"
#include "RenameBench.h"
#include "common/TemporaryFolder.h"
#include "engine/history/RunHistory.h"
#include "engine/history/RunRecordReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
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
    const TemporaryFolder folder(RenameBench::inMemory());
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

/// Which run is next, after runs that ended, were stopped, or were cut off.
TEST(RunHistory, ChoosesWhatIsNext) {
    struct Case {
        /// In order: "rename", "undo" or "redo" with the number of the run it is of, and how it ended: "all",
        /// "none" and "some" of its items changed, "stopped", "cut".
        std::vector<std::string> runs;
        std::string undo; ///< "1 old", "2 new", or empty
        std::string redo;
        std::string states; ///< oldest first
    };
    const std::vector<Case> cases = {
        {{}, "", "", ""},
        {{"rename all"}, "1 old", "", "whole"},
        {{"rename none"}, "", "", "whole"},
        {{"rename all", "rename all"}, "2 old", "", "whole whole"},
        {{"rename all", "undo1 all"}, "", "2 old", "undone whole"},
        {{"rename all", "rename all", "undo2 all"}, "1 old", "3 old", "whole undone whole"},
        {{"rename all", "undo1 all", "redo2 all"}, "3 old", "", "whole undone whole"},
        {{"rename all", "undo1 all", "redo2 all", "undo3 all"}, "", "4 old", "undone whole undone whole"},
        // cut off or stopped: back, or to the end
        {{"rename cut"}, "1 old", "1 new", "interrupted"},
        {{"rename stopped"}, "1 old", "1 new", "stopped"},
        {{"rename cut", "redo1 all"}, "1 old", "", "whole whole"},
        {{"rename cut", "undo1 all"}, "", "1 new", "undone whole"},
        {{"rename stopped", "undo1 cut", "redo1 cut"}, "1 old", "1 new", "stopped interrupted interrupted"},
        {{"rename all", "undo1 cut"}, "2 new", "2 old", "whole interrupted"},
        {{"rename all", "undo1 cut", "undo2 all"}, "", "2 old", "undone whole whole"},
        {{"rename all", "undo1 stopped", "redo2 all"}, "2 new", "", "whole undone whole"},
        // nothing could be brought back: it stays the next
        {{"rename all", "undo1 none"}, "1 old", "", "whole whole"},
        {{"rename all", "undo1 some"}, "", "2 old", "undone whole"},
    };
    const std::map<std::string, std::string> ends{{"all", "3\t0\tended"},
                                                  {"none", "0\t3\tended"},
                                                  {"some", "2\t1\tended"},
                                                  {"stopped", "3\t0\tstopped"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.runs));
        const TemporaryFolder folder;
        for (std::size_t i = 0; i < c.runs.size(); ++i) {
            const std::size_t space = c.runs[i].find(' ');
            const std::string what = c.runs[i].substr(0, space);
            const std::size_t of = what.find_first_of("0123456789");
            RecordText text = threeBlocks();
            text.lines[1] = "run\t2026-11-21T14:22:33+01:00\t1\tb\ttvrn\t" + what.substr(0, of) + "\t" +
                            (of == std::string::npos ? "" : what.substr(of));
            if (const auto end = ends.find(c.runs[i].substr(space + 1)); end != ends.end())
                text.lines.push_back("done\t" + end->second.substr(0, 4) + "2026-11-21T14:22:34+01:00" +
                                     end->second.substr(3));
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
