#include "shell/ShellFixture.h"

#include <thread>

namespace tavrin::test {
namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

class WholeRunTest : public ShellFixture {
  protected:
    void add(const std::vector<std::string>& names) {
        std::vector<std::string> paths;
        for (const std::string& name : names)
            paths.push_back(files.write(name, name));
        controller().addFilePaths(paths, true);
        waitForPreview();
    }
    void startReplacing(const char16_t* from, const char16_t* to) {
        start();
        setSteps({{"Replace text", {{"searchTerm", from}, {"replacementTerm", to}}}});
    }
    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (const auto& [name, content] : files.tree())
            found.push_back(name);
        return found;
    }
};

TEST_F(WholeRunTest, AWorkerThatAsksKeepsTheMainThreadFree) {
    startReplacing(u"a", u"b");
    add({"a1"});
    frontEnd.expect("rename", ScriptedFrontEnd::Held());
    controller().ok();
    ASSERT_TRUE(loop.runUntil([this] { return frontEnd.isHolding(); }));
    EXPECT_TRUE(controller().renameEngine().isBusy());
    EXPECT_FALSE(controller().validateUserInterfaceItem());
    set("showPath", 1);
    loop.advance(std::chrono::milliseconds(1000));
    EXPECT_THAT(table(), ElementsAre("a1 > b1"));
    frontEnd.expect("alert summary");
    frontEnd.answerHeld(ConfirmationChoice::one);
    waitUntilIdle();
    EXPECT_EQ(names(), std::vector<std::string>{"b1"});
}

TEST_F(WholeRunTest, AClosedApplicationFreesTheWorkerAndLeavesTheRest) {
    startReplacing(u"a", u"b");
    add({"a1", "a2"});
    for (const bool isWindowClosed : {true, false}) {
        frontEnd.expect("rename", ConfirmationChoice::leaveOut);
        frontEnd.expect("rename", ScriptedFrontEnd::Held());
        controller().ok();
        ASSERT_TRUE(loop.runUntil([this] { return frontEnd.isHolding(); }));
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
        EXPECT_EQ(names(), (std::vector<std::string>{"a1", "a2"}));
    }
}

TEST_F(WholeRunTest, APendingChangeIsRequestedBeforeTheRename) {
    startReplacing(u"a", u"b");
    set("interactiveMode", 0);
    add({"a1"});
    set("showPath", 1);
    const int before = frontEnd.finishedPreviews;
    frontEnd.expect("alert summary");
    EXPECT_TRUE(controller().previewControl().isPreviewPending());
    controller().ok();
    waitUntilIdle();
    EXPECT_GT(frontEnd.finishedPreviews, before);
}

TEST_F(WholeRunTest, TheListIsClearedOrTheApplicationEndsWhenSoWished) {
    startReplacing(u"a", u"b");
    set("interactiveMode", 0);
    controller().globalSettings().setShouldContinueAfterRename(false);
    add({"a1"});
    frontEnd.expect("alert summary");
    controller().ok();
    waitUntilIdle();
    EXPECT_TRUE(table().empty());
    waitForPreview();
    EXPECT_EQ(status(), "Please add files to be renamed to preview table above.");

    add({"a2"});
    set("quitAfterRename", 1);
    frontEnd.expect("alert summary", ScriptedFrontEnd::Held());
    controller().ok();
    ASSERT_TRUE(loop.runUntil([this] { return frontEnd.isHolding(); }));
    waitUntilIdle();
    EXPECT_FALSE(frontEnd.isTerminated);
    frontEnd.answerHeld(AlertAnswer());
    EXPECT_TRUE(frontEnd.isTerminated);
    EXPECT_EQ(names(), (std::vector<std::string>{"b1", "b2"}));
}

TEST_F(WholeRunTest, AListIsSaved) {
    startReplacing(u"a", u"b");
    add({"a1", "x"});
    frontEnd.expect("list format", FileListChoice{NoticeAnswer::ok, 0, true});
    frontEnd.expect("save path", std::optional<std::string>(data.path("list.txt")));
    frontEnd.expect("alert fileListSaved");
    controller().createFileList();
    waitUntilIdle();
    EXPECT_EQ(data.read("list.txt"), "a1\tb1\n");
    EXPECT_THAT(frontEnd.events, ::testing::Contains("panel titled Save File List"));

    frontEnd.expect("list format", FileListChoice{NoticeAnswer::help, 0, false});
    controller().createFileList();
    EXPECT_EQ(frontEnd.events.back(), "help helpTopic29");
    frontEnd.expect("list format", FileListChoice{NoticeAnswer::ok, 2, false});
    frontEnd.expect("save path", std::optional<std::string>());
    controller().createFileList();
    EXPECT_FALSE(controller().renameEngine().isBusy());
}

TEST_F(WholeRunTest, ClearingDuringARunLeavesTheRunItsStore) {
    startReplacing(u"a", u"b");
    add({"a1", "a2", "a3"});
    frontEnd.expect("rename", ScriptedFrontEnd::Held());
    controller().ok();
    ASSERT_TRUE(loop.runUntil([this] { return frontEnd.isHolding(); }));
    controller().clearPreview();
    EXPECT_TRUE(table().empty());
    frontEnd.expect("alert summary");
    frontEnd.answerHeld(ConfirmationChoice::all);
    waitUntilIdle();
    EXPECT_EQ(names(), (std::vector<std::string>{"b1", "b2", "b3"}));
    // What the run has renamed is on the list again, under its new names.
    add({"c"});
    EXPECT_THAT(table(), ElementsAre("b1 > b1", "b2 > b2", "b3 > b3", "c > c"));
}

TEST_F(WholeRunTest, ChangesAndClearingWhilePreviewsRunEndInTheLastState) {
    startReplacing(u"a", u"b");
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
    startReplacing(u"a", u"b");
    set("interactiveMode", 0);
    add({"a1"});
    waitForPreview();
    EXPECT_THAT(frontEnd.presented,
                ElementsAre(::testing::StartsWith("The list of items can't be kept in a file")));
    EXPECT_THAT(table(), ElementsAre("a1 > b1"));
    EXPECT_EQ(defaults.integerForKey("store"), 1);
    frontEnd.expect("alert summary");
    controller().ok();
    waitUntilIdle();
    EXPECT_THAT(files.tree(), ElementsAre(Pair("b1", "a1")));
}

TEST_F(WholeRunTest, ContextAndStoreAreMadeOnceWhoeverAsks) {
    std::vector<std::thread> threads;
    std::vector<const StoreContext*> contexts(8);
    controller();
    for (std::size_t i = 0; i < contexts.size(); ++i)
        threads.emplace_back([&, i] {
            EXPECT_NE(controller().persistentStoreCoordinator(), nullptr);
            contexts[i] = &controller().managedObjectContext();
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(contexts, std::vector<const StoreContext*>(contexts.size(), contexts.front()));
}

} // namespace
} // namespace tavrin::test
