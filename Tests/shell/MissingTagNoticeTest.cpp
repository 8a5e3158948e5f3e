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
        begin();
    }
    ~MissingTagNoticeTest() override {
        endController(); // ends the threads that may ask a file
    }
    void begin() {
        start();
        setSteps({{"Rename from tag", {{"pattern", u"<Artist>"}}}});
    }
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

TEST_F(MissingTagNoticeTest, TellsOnceInARunOfTheProgramUntilItsBoxIsTicked) {
    struct Case {
        std::optional<bool> isWanted; ///< as it is stored before
        ScriptedFrontEnd::Answer answer;
        bool isTold;
        bool isWantedAfter;
    };
    const std::vector<Case> cases{{std::nullopt, AlertAnswer(), true, true},
                                  {true, ScriptedFrontEnd::Closed(), true, true},
                                  {true, AlertAnswer{.button = 0, .suppress = true}, true, false},
                                  {false, {}, false, true}};
    for (const Case& each : cases) {
        if (each.isWanted)
            defaults.setObject("showTagNotPresentDialog", *each.isWanted);
        if (each.isTold)
            frontEnd.expect("alert tagNotPresent", each.answer);
        add({"a.txt", "b.txt"});
        EXPECT_THAT(table(), testing::ElementsAre("a.txt > a.txt", "b.txt > b.txt"));
        EXPECT_TRUE(frontEnd.isScriptOver());
        if (!each.isTold) // counts as told all the same
            defaults.setObject("showTagNotPresentDialog", true);
        add({"c.txt"});
        EXPECT_EQ(defaults.boolForKey("showTagNotPresentDialog"), each.isWantedAfter);
        endController();
        loop.reopen();
        begin();
    }
}

TEST_F(MissingTagNoticeTest, IsNotShownForFilesThatCouldNotBeRead) {
    data.remove("tool");
    add({"a.txt", "b.txt"});
    EXPECT_THAT(status(),
                testing::EndsWith("need renaming. The metadata of 2 files could not be read: the metadata "
                                  "tool cannot be started: No such file or directory"));
}

TEST_F(MissingTagNoticeTest, TheEndFreesTheWorkerWhetherItIsShownOrNot) {
    for (const bool isShown : {true, false}) {
        controller().addFilePaths({files.write("a.txt")}, true);
        loop.advance(std::chrono::milliseconds(300));
        if (isShown) {
            frontEnd.expect("alert tagNotPresent", ScriptedFrontEnd::Held());
            ASSERT_TRUE(loop.runUntil([this] { return frontEnd.isHolding(); }));
            EXPECT_TRUE(controller().renameEngine().isBusy());
        }
        endController(); // would hang
        loop.reopen();
        begin();
    }
}

} // namespace
} // namespace tavrin::test
