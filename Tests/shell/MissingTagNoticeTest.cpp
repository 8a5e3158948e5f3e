#include "platform/metadata/FileManager.h"
#include "shell/ShellFixture.h"

#include <filesystem>

namespace tavrin::test {

namespace {

/// A chain that asks files for an artist whom none of them has.
class MissingTagNoticeTest : public ShellFixture {
  protected:
    MissingTagNoticeTest() {
        FileManager::setInstance(&fileManager);
        defaults.setObject("loggerIsOn", false);
        controller().applicationDidFinishLaunching();
        waitForPreview();
        setSteps({{"Rename from tag", {{"pattern", u"<Artist>"}}}});
    }
    ~MissingTagNoticeTest() override {
        endController(); // ends the threads that may ask a file
    }
    void add(const char* name) { controller().addFilePaths({files.write(name)}, true); }

    /// One that finds nothing in any file.
    std::string makeTool() {
        const std::string tool = data.write(
            "tool",
            "#!/bin/sh\nwhile read -r path; do printf '{extracted-key}:\\n---finished---\\n'; done\n");
        std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
        return tool;
    }

    FileManager fileManager{makeTool()};
};

TEST_F(MissingTagNoticeTest, TellsOnceInARunOfTheProgram) {
    add("a.txt");
    add("b.txt");
    frontEnd.expect("alert tagNotPresent");
    waitForPreview();
    add("c.txt");
    waitForPreview();
    EXPECT_THAT(table(), testing::ElementsAre("a.txt > a.txt", "b.txt > b.txt", "c.txt > c.txt"));
    ASSERT_EQ(frontEnd.alerts.size(), 1U);
    EXPECT_TRUE(defaults.boolForKey("showTagNotPresentDialog"));
}

TEST_F(MissingTagNoticeTest, IsNotShownForFilesThatCouldNotBeRead) {
    data.remove("tool");
    add("a.txt");
    add("b.txt");
    waitForPreview();
    EXPECT_THAT(status(),
                testing::EndsWith("need renaming. The metadata of 2 files could not be read: the metadata "
                                  "tool cannot be started: No such file or directory"));
}

TEST_F(MissingTagNoticeTest, IsSwitchedOffForGoodByItsBox) {
    add("a.txt");
    frontEnd.expect("alert tagNotPresent", AlertAnswer{.button = 0, .suppress = true});
    waitForPreview();
    const auto stored = defaults.objectForKey("showTagNotPresentDialog");
    ASSERT_TRUE(stored);
    EXPECT_FALSE(boolValue(*stored));
}

TEST_F(MissingTagNoticeTest, IsNotShownWhereItIsSwitchedOff) {
    defaults.setObject("showTagNotPresentDialog", false);
    add("a.txt");
    waitForPreview();
    defaults.setObject("showTagNotPresentDialog", true);
    add("b.txt"); // counts as told all the same
    waitForPreview();
    EXPECT_TRUE(frontEnd.alerts.empty());
}

TEST_F(MissingTagNoticeTest, FreesTheWorkerWhenItsWindowIsClosed) {
    add("a.txt");
    frontEnd.expect("alert tagNotPresent", ScriptedFrontEnd::Closed());
    waitForPreview();
    EXPECT_THAT(table(), testing::ElementsAre("a.txt > a.txt"));
}

TEST_F(MissingTagNoticeTest, FreesTheWorkerWhenTheApplicationEnds) {
    add("a.txt");
    frontEnd.expect("alert tagNotPresent", ScriptedFrontEnd::Held());
    loop.advance(std::chrono::milliseconds(300));
    ASSERT_TRUE(loop.runUntil([this] { return frontEnd.isHolding(); }));
    EXPECT_TRUE(controller().renameEngine().isBusy());
    endController(); // would hang
}

TEST_F(MissingTagNoticeTest, FreesTheWorkerWhenTheRunLoopEndsBeforeItIsShown) {
    add("a.txt");
    loop.advance(std::chrono::milliseconds(300));
    loop.close();
    endController();
    EXPECT_TRUE(frontEnd.alerts.empty());
}

} // namespace

} // namespace tavrin::test
