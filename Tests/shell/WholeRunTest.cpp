#include "shell/ShellFixture.h"

#include <future>
#include <ranges>

namespace tavrin::test {
namespace {

class WholeRunTest : public ShellFixture {
  protected:
    void startReplacing(const std::vector<std::string>& names) {
        start();
        setSteps({{"Replace text", {{"searchTerm", u"a"}, {"replacementTerm", u"b"}}}});
        add(names);
    }
    /// Begins a run and waits until it asks what stays open.
    void runUntilHeld() {
        controller().ok();
        ASSERT_TRUE(loop.runUntil([this] { return frontEnd.isHolding(); }));
    }
    std::string names() {
        const auto tree = files.tree();
        return fmt::format("{}", fmt::join(std::views::keys(tree), " "));
    }
};

TEST_F(WholeRunTest, AWorkerThatAsksLeavesTheMainThreadFreeAndUsesTheLastChange) {
    startReplacing({"a1"});
    controller().compositeAction().getCurrentAction().setValue(u"c", "replacementTerm");
    frontEnd.expect("rename", ScriptedFrontEnd::Held());
    runUntilHeld();
    EXPECT_TRUE(controller().renameEngine().isBusy());
    EXPECT_FALSE(controller().validateUserInterfaceItem());
    EXPECT_THAT(frontEnd.events, Contains("mainTab 1"));
    set("showPath", 1);
    loop.advance(std::chrono::milliseconds(1000));
    EXPECT_THAT(table(), ElementsAre("a1 > c1"));
    frontEnd.expect("alert summary");
    frontEnd.answerHeld(ConfirmationChoice::one);
    waitUntilIdle();
    EXPECT_TRUE(controller().validateUserInterfaceItem());
    EXPECT_THAT(frontEnd.events, Contains("mainTab 0"));
    EXPECT_EQ(names(), "c1");
}

TEST_F(WholeRunTest, AClosedApplicationFreesTheWorkerAndLeavesTheRest) {
    startReplacing({"a1", "a2"});
    for (const bool isWindowClosed : {true, false}) {
        frontEnd.expect("rename", ConfirmationChoice::leaveOut);
        frontEnd.expect("rename", ScriptedFrontEnd::Held());
        runUntilHeld();
        if (isWindowClosed) {
            frontEnd.expect("alert summary");
            controller().windowWillClose();
            EXPECT_FALSE(frontEnd.isTerminated) << "before the report is read";
            waitUntilIdle();
            EXPECT_TRUE(frontEnd.isTerminated);
        } else {
            frontEnd.answerHeld(ScriptedFrontEnd::Closed());
            endController();
        }
        EXPECT_EQ(names(), "a1 a2");
    }
}

// Whoever closes the window in a run may stay, undo what was done and quit, or quit by closing once more.
TEST_F(WholeRunTest, AfterAClosedWindowTheUserMayStayOrUndo) {
    options.history = {data.path("Runs"), "window"};
    startReplacing({"a1", "a2"});
    const auto closeInRun = [this](const ScriptedFrontEnd::Answer& answer) {
        frontEnd.expect("rename", ConfirmationChoice::one);
        frontEnd.expect("rename", ScriptedFrontEnd::Held());
        runUntilHeld();
        frontEnd.expect("report", answer);
        controller().windowWillClose();
        waitUntilIdle();
        EXPECT_TRUE(frontEnd.lastReport.wasStopped);
        EXPECT_EQ(frontEnd.lastReport.changed, 1U);
        EXPECT_EQ(frontEnd.lastReport.untouched, 1U);
    };
    closeInRun(ReportAnswer::keepOpen);
    waitForPreview();
    EXPECT_FALSE(frontEnd.isTerminated);
    EXPECT_THAT(table(), ::testing::UnorderedElementsAre("a2 > b2", "b1 > b1"));
    files.write("a3", "a3");
    add({"a3"});
    closeInRun(ReportAnswer::undoAndQuit);
    waitUntilIdle();
    EXPECT_TRUE(frontEnd.isTerminated);
    EXPECT_EQ(names(), "a2 a3 b1");
    restart();
    start();
    setSteps({{"Replace text", {{"searchTerm", u"a"}, {"replacementTerm", u"c"}}}});
    add({"a2", "a3"});
    closeInRun(ScriptedFrontEnd::Held());
    EXPECT_FALSE(frontEnd.isTerminated);
    controller().windowWillClose();
    EXPECT_TRUE(frontEnd.isTerminated);
}

TEST_F(WholeRunTest, TheListIsClearedOrTheApplicationEndsWhenSoWished) {
    startReplacing({"a1"});
    controller().globalSettings().setShouldContinueAfterRename(false);
    rename();
    EXPECT_TRUE(table().empty());
    EXPECT_THAT(frontEnd.events, Contains("previewTab 1"));
    add({"a2"});
    set("quitAfterRename", 1);
    frontEnd.expect("alert summary", ScriptedFrontEnd::Held());
    runUntilHeld();
    waitUntilIdle();
    EXPECT_FALSE(frontEnd.isTerminated);
    frontEnd.answerHeld(ScriptedFrontEnd::Closed()); // in whichever way the report goes
    EXPECT_TRUE(frontEnd.isTerminated);
    EXPECT_EQ(names(), "b1 b2");
}

TEST_F(WholeRunTest, AListIsSaved) {
    startReplacing({"a1", "x"});
    frontEnd.expect("list format", FileListChoice{NoticeAnswer::ok, 0, true});
    frontEnd.expect("save path", std::optional(data.path("list.txt")));
    frontEnd.expect("alert fileListSaved");
    controller().createFileList();
    waitUntilIdle();
    EXPECT_EQ(data.read("list.txt"), "a1\tb1\n");
    frontEnd.expect("list format", FileListChoice{NoticeAnswer::help, 0, false});
    controller().createFileList();
    EXPECT_EQ(frontEnd.events.back(), "help helpTopic29");
    frontEnd.expect("list format", FileListChoice{NoticeAnswer::ok, 2, false});
    frontEnd.expect("save path", std::optional<std::string>());
    controller().createFileList();
    EXPECT_FALSE(controller().renameEngine().isBusy());
}

TEST_F(WholeRunTest, ClearingDuringARunLeavesTheRunItsStore) {
    startReplacing({"a1", "a2", "a3"});
    frontEnd.expect("rename", ScriptedFrontEnd::Held());
    runUntilHeld();
    controller().clearPreview();
    EXPECT_TRUE(table().empty());
    frontEnd.expect("alert summary");
    frontEnd.answerHeld(ConfirmationChoice::all);
    waitUntilIdle();
    EXPECT_EQ(names(), "b1 b2 b3");
    // What the run has renamed is on the list again, under its new names.
    add({"c"});
    EXPECT_THAT(table(), ElementsAre("b1 > b1", "b2 > b2", "b3 > b3", "c > c"));
}

TEST_F(WholeRunTest, ChangesAndClearingWhilePreviewsRunEndInTheLastState) {
    startReplacing({});
    std::vector<std::string> paths;
    for (int i = 0; i < 300; ++i)
        paths.push_back(files.write("a" + std::to_string(i)));
    for (int round = 0; round < 20; ++round) {
        controller().addFilePaths(paths, false);
        controller().previewControl().firePendingPreview();
        set("showPath", round % 2);
        if (round % 3 == 0)
            controller().clearPreview();
        loop.advance(std::chrono::milliseconds(round % 2 == 0 ? 100 : 300));
        (void)table();
    }
    waitForPreview();
    EXPECT_EQ(table().size(), 300u);
    EXPECT_EQ(status(), "300 out of 300 items need renaming.");
}

TEST_F(WholeRunTest, AStoreWithoutAFileMovesIntoMemoryAndTheWorkGoesOn) {
    defaults.setObject("store", 0);
    (void)data.write("Data", "a file where the folder should be");
    options.usesUserFolders = false;
    startReplacing({"a1"});
    EXPECT_THAT(frontEnd.presented, ElementsAre(StartsWith("The list of items can't be kept in a file")));
    EXPECT_EQ(defaults.integerForKey("store"), 1);
    waitForPreview();
    EXPECT_THAT(table(), ElementsAre("a1 > b1"));
    rename();
    EXPECT_THAT(files.tree(), ElementsAre(std::pair("b1", "a1")));
}

TEST_F(WholeRunTest, ContextAndStoreAreMadeOnceWhoeverAsks) {
    std::vector<std::future<StoreContext*>> contexts;
    controller();
    for (int i = 0; i < 8; ++i)
        contexts.push_back(
            std::async(std::launch::async, [&] { return &controller().managedObjectContext(); }));
    for (auto& context : contexts)
        EXPECT_EQ(context.get(), &controller().managedObjectContext());
}

} // namespace
} // namespace tavrin::test
