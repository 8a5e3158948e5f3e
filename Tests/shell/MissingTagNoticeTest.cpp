#include "platform/metadata/FileManager.h"
#include "shell/ShellFixture.h"

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
    using Answer = std::optional<ScriptedFrontEnd::Answer>; // absent: it is not told
    const char* const key = "showTagNotPresentDialog";
    const std::tuple<std::optional<bool>, Answer, bool> cases[] = {
        {std::nullopt, AlertAnswer(), true},
        {true, ScriptedFrontEnd::Closed(), true},
        {true, AlertAnswer{.button = 0, .suppress = true}, false},
        {false, std::nullopt, true}};
    for (const auto& [isWanted, answer, isWantedAfter] : cases) {
        if (isWanted)
            defaults.setObject(key, *isWanted);
        if (answer)
            frontEnd.expect("alert tagNotPresent", *answer);
        add({"a.txt", "b.txt"});
        EXPECT_THAT(table(), ElementsAre("a.txt > a.txt", "b.txt > b.txt"));
        EXPECT_TRUE(frontEnd.isScriptOver());
        if (!answer) // counts as told all the same
            defaults.setObject(key, true);
        add({"c.txt"});
        EXPECT_EQ(defaults.boolForKey(key), isWantedAfter);
        restart();
        begin();
    }
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
        restart(); // would hang
        begin();
    }
}

} // namespace
} // namespace tavrin::test
