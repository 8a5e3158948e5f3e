#include "RenameBench.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <thread>

namespace tavrin::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum ConfirmationChoice;

/// Gives the scripted answers in turn; one too many questions is a failure.
template <typename... Question> auto answering(std::deque<ConfirmationChoice> answers) {
    return [answers = std::move(answers)](const Question&...) mutable {
        if (answers.empty()) {
            ADD_FAILURE() << "one question too many";
            return stop;
        }
        const ConfirmationChoice next = answers.front();
        answers.pop_front();
        return next;
    };
}

class RenameAnswers : public testing::Test {
  protected:
    RenameAnswers() { bench.host.set("interactiveMode", 1); }

    void makeRow(const std::vector<std::string>& names) {
        bench.makeAndRead(names);
        for (const std::string& name : names)
            bench.setFinalName(name, u"new " + std::u16string(name.begin(), name.end()));
    }

    RenameBench bench;
};

} // namespace

TEST_F(RenameAnswers, OneLeaveOutAllThenNoMoreQuestions) {
    makeRow({"a", "b", "c", "d"});
    bench.host.prompts.onRename = answering<RenameQuestion>({one, leaveOut, all});
    bench.rename();
    EXPECT_THAT(bench.host.prompts.asked,
                ElementsAre("rename a -> new a", "rename b -> new b", "rename c -> new c"));
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"new a", "a"}, {"b", "b"}, {"new c", "c"}, {"new d", "d"}}));
    EXPECT_EQ(bench.renamed(), 3);
}

TEST_F(RenameAnswers, StopAtTheSecondKeepsTheFirst) {
    makeRow({"a", "b", "c"});
    bench.host.prompts.onRename = answering<RenameQuestion>({one, stop});
    bench.rename();
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"new a", "a"}, {"b", "b"}, {"c", "c"}}));
    EXPECT_EQ(bench.renamed(), 1);
    EXPECT_THAT(bench.sourcePaths(), ElementsAre("b", "c", "new a"));
}

TEST_F(RenameAnswers, AChainIsAskedItemByItemAndGoesOnAfterOneIsLeftOut) {
    bench.makeAndRead({"a", "b", "c"});
    bench.setFinalName("a", u"b");
    bench.setFinalName("b", u"c");
    bench.setFinalName("c", u"d");
    std::vector<RenameQuestion> questions;
    bench.host.prompts.onRename = [&](const RenameQuestion& question) {
        questions.push_back(question);
        return question.oldName == "b" ? leaveOut : one;
    };
    bench.rename();
    ASSERT_EQ(questions.size(), 3U);
    EXPECT_EQ(questions[0].oldName, "c");
    EXPECT_EQ(questions[0].fullPath, bench.disk.path("c"));
    for (const RenameQuestion& question : questions) {
        EXPECT_EQ(question.path, bench.disk.path());
        EXPECT_EQ(question.fullPath.has_value(), question.oldName == "c");
    }
    // The last one's name is still taken.
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"d", "c"}, {"b", "b"}, {"a", "a"}}));
    EXPECT_THAT(bench.problems(), ElementsAre("Could not change a file name: a"));
    EXPECT_EQ(bench.reports[0].message, "Another file with this name already exists in this folder.");
}

TEST_F(RenameAnswers, ASwapIsOneQuestion) {
    struct Case {
        ConfirmationChoice answer;
        RenameBench::Tree after;
    };
    const RenameBench::Tree same{{"a", "a"}, {"b", "b"}, {"c", "c"}};
    for (const Case& one :
         {Case{ConfirmationChoice::one, {{"a", "b"}, {"b", "a"}, {"c", "c"}}},
          Case{all, {{"a", "b"}, {"b", "a"}, {"new", "c"}}}, Case{leaveOut, same}, Case{stop, same}}) {
        RenameBench swap;
        swap.host.set("interactiveMode", 1);
        swap.makeAndRead({"a", "b", "c"});
        swap.setFinalName("a", u"b");
        swap.setFinalName("b", u"a");
        swap.setFinalName("c", u"new");
        swap.host.prompts.onSwap = [&](const SwapQuestion& question) {
            EXPECT_EQ(question.path, swap.disk.path());
            EXPECT_EQ(question.fullPathFirst, swap.disk.path("a"));
            EXPECT_EQ(question.fullPathSecond, swap.disk.path("b"));
            return one.answer;
        };
        if (one.answer != stop && one.answer != all)
            swap.host.prompts.onRename = answering<RenameQuestion>({leaveOut});
        swap.rename();
        EXPECT_EQ(swap.host.prompts.asked.front(), "swap a -> b");
        EXPECT_EQ(swap.files(), one.after);
    }
}

TEST_F(RenameAnswers, ACycleIsAskedAboutByFolderAndIsTheLastQuestionUnlessItIsLeftOut) {
    for (const ConfirmationChoice answer : {one, leaveOut, stop}) {
        RenameBench cycles;
        cycles.host.set("interactiveMode", 1);
        cycles.make({"f/a", "f/b", "f/c", "g/a", "g/b", "g/c"});
        cycles.read({"f", "g"});
        for (const std::string folder : {"f/", "g/"}) {
            cycles.setFinalName(folder + "a", u"b");
            cycles.setFinalName(folder + "b", u"c");
            cycles.setFinalName(folder + "c", u"a");
        }
        cycles.host.prompts.onNameCycle = answering<NameCycleQuestion>({answer, answer});
        cycles.rename();
        std::vector<std::string> asked{"cycle " + cycles.disk.path("f")};
        if (answer == leaveOut)
            asked.push_back("cycle " + cycles.disk.path("g"));
        EXPECT_EQ(cycles.host.prompts.asked, asked);
        EXPECT_EQ(cycles.renamed(), answer == one ? 6 : 0);
        EXPECT_EQ(cycles.files().at("g/b"), answer == one ? "g/a" : "g/b");
    }
}

TEST_F(RenameAnswers, AtAFailureAllMeansToRecordTheLaterOnes) {
    bench.host.set("interactiveMode", 0);
    makeRow({"a", "b", "c", "d"});
    for (const char* name : {"a", "b", "c"})
        bench.disk.remove(name);
    bench.host.prompts.onProblem = answering<ProblemReport>({leaveOut, all});
    bench.rename();
    EXPECT_EQ(bench.host.prompts.asked.size(), 2U);
    const auto errors = bench.host.errors();
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_TRUE(errors[0].starts_with("Could not change a file name | You may not have sufficient access"));
    EXPECT_TRUE(errors[0].ends_with("| " + bench.disk.path("c")));
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"new d", "d"}}));
}

TEST_F(RenameAnswers, ARingWithoutAMemberStaysAsItIsAndAStopIsAskedOnce) {
    bench.host.set("interactiveMode", 0);
    bench.makeAndRead({"a", "b", "c", "d"});
    bench.setFinalName("a", u"b");
    bench.setFinalName("b", u"c");
    bench.setFinalName("c", u"a");
    bench.disk.remove("b");
    bench.host.prompts.onProblem = answering<ProblemReport>({stop});
    bench.rename();
    EXPECT_EQ(bench.files(), untouched({"a", "c", "d"}));
    EXPECT_EQ(bench.renamed(), 0);
    EXPECT_EQ(bench.host.errors().size(), 2U);
}

TEST_F(RenameAnswers, ASilentDropletIsNotAskedButToldOfFailures) {
    makeRow({"a", "b"});
    bench.disk.remove("a");
    bench.host.isSilent = true;
    bench.rename();
    EXPECT_THAT(bench.problems(), ElementsAre("Could not change a file name: a"));
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"new b", "b"}}));
}

TEST_F(RenameAnswers, ARequestToStopIsTakenBetweenItems) {
    makeRow({"a", "b", "c"});
    bench.host.prompts.onRename = [&](const RenameQuestion& question) {
        if (question.oldName == "b")
            bench.host.engine.requestStop();
        return one;
    };
    bench.rename();
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"new a", "a"}, {"new b", "b"}, {"c", "c"}}));
    EXPECT_THAT(bench.reports, IsEmpty());
}

TEST_F(RenameAnswers, AClosedLoopAnswersStop) {
    makeRow({"a", "b"});
    bench.host.prompts.onRename = [&](const RenameQuestion&) {
        bench.host.loop.close();
        return one;
    };
    std::thread worker([this] { bench.renameOnThisThread(); });
    bench.host.loop.runUntil([this] { return !bench.host.prompts.asked.empty(); });
    worker.join();
    EXPECT_EQ(bench.files(), (RenameBench::Tree{{"new a", "a"}, {"b", "b"}}));
}

TEST(RenameWarnings, LibrariesAreWarnedOfOncePerRunAndWherePathsHoldTheirName) {
    struct Case {
        const char* title;
        std::vector<std::string> files;
        ConfirmationChoice iPhoto;
        ConfirmationChoice iTunes;
        std::vector<std::string> asked;
        int renamed;
    };
    const std::vector<Case> cases{
        {"neither", {"x/", "x/iTune", "x/my iTunes"}, stop, stop, {}, 2},
        {"in the last component, whatever the case",
         {"x/", "x/ITUNES.txt", "x/iTunes 2"},
         stop,
         one,
         {"iTunes"},
         2},
        {"in the folder",
         {"iphoto LIBRARY 2/", "iphoto LIBRARY 2/a", "iphoto LIBRARY 2/b"},
         one,
         stop,
         {"iPhoto"},
         2},
        {"refused", {"iTunes/", "iTunes/a", "iTunes/b"}, stop, stop, {"iTunes"}, 0},
        {"both, the second even after the first was refused",
         {"iPhoto Library/", "iPhoto Library/iTunes a"},
         stop,
         one,
         {"iPhoto", "iTunes"},
         0},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.title);
        RenameBench bench;
        bench.make(one.files);
        bench.read({one.files.front()});
        for (std::size_t i = 1; i < one.files.size(); ++i)
            bench.setFinalName(one.files[i], u"new " + std::u16string(1, static_cast<char16_t>(u'a' + i)));
        bench.host.prompts.onLibraryWarning = [&](const LibraryWarning& warning) {
            return warning.library == LibraryWarning::Library::iPhoto ? one.iPhoto : one.iTunes;
        };
        bench.rename();
        EXPECT_EQ(bench.host.prompts.asked, one.asked);
        EXPECT_EQ(bench.renamed(), one.renamed);
    }
}

TEST(RenameWarnings, SettingsSwitchThemOff) {
    RenameBench bench;
    bench.host.set("preventAccidentalITunesLibraryDamage", false);
    bench.host.set("preventAccidentalIPhotoLibraryDamage", false);
    bench.makeAndRead({"iTunes"});
    bench.setFinalName("iTunes", u"iPhoto Library");
    bench.rename();
    EXPECT_THAT(bench.host.prompts.asked, IsEmpty());
    EXPECT_EQ(bench.renamed(), 1);
}

} // namespace tavrin::test
