#include "engine/history/RunHistory.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

class CommandsTest : public ShellFixture {
  protected:
    ActionListCommands& commands() { return controller().actionListCommands(); }
    CompositeRenameAction& steps() { return controller().compositeAction(); }
};

TEST_F(CommandsTest, StepsComeAndGoAndTheCurrentOneIsTheNearest) {
    start();
    setSteps({{"Add to end", {{"string", u"X"}}}, {"Replace text", {}}, {"Remove text", {}}});
    const auto left = [this] {
        return fmt::format("{}, {}", steps().getCurrentActionIndexAsInt(), fmt::join(stepNames(), ", "));
    };
    commands().addAction();
    EXPECT_EQ(left(), "1, Add to end, Add to end, Replace text, Remove text");
    EXPECT_FALSE(commands().canCollapse());
    commands().moveAction(1, 3);
    EXPECT_EQ(left(), "3, Add to end, Replace text, Remove text, Add to end");
    EXPECT_EQ(steps().getCurrentAction().getParamString("string"), u"X");
    commands().resetToDefaults();
    EXPECT_EQ(steps().actionAtIndex(0).getParamString("string"), u"X");
    EXPECT_EQ(steps().actionAtIndex(3).getParamString("string"), u"");
    commands().removeAction();
    EXPECT_EQ(left(), "2, Add to end, Replace text, Remove text");
    steps().setCurrentActionIndex(0);
    commands().removeAction();
    EXPECT_EQ(left(), "0, Replace text, Remove text");
    commands().clearActions();
    commands().removeAction();
    EXPECT_EQ(left(), "0, Replace text");
    EXPECT_TRUE(commands().canCollapse());
}

TEST_F(CommandsTest, TheListOfStepsShowsHidesAndKeepsItsWidth) {
    start();
    const auto isShown = [this] { return settings().shouldShowMultistepDrawer == 1; };
    // A window reports the moves that are made for it as well.
    frontEnd.onDividerMoved = [this](double position) {
        commands().splitViewDidResizeSubviews(position == 0, position);
    };
    controller().showMultistepDrawer();
    EXPECT_EQ(frontEnd.events.back(), "divider 150");
    EXPECT_TRUE(isShown());
    commands().splitViewDidResizeSubviews(false, 90);
    EXPECT_EQ(defaults.floatForKey("actionListSeparatorPosition"), 150);
    commands().splitViewDidResizeSubviews(false, 230);
    commands().splitViewDidResizeSubviews(true, 0);
    EXPECT_FALSE(isShown());
    for (const char* event : {"divider 230", "divider 0"}) {
        controller().showMultistepDrawer();
        EXPECT_EQ(frontEnd.events.back(), event);
    }
    EXPECT_FALSE(isShown());
    EXPECT_EQ(defaults.floatForKey("actionListSeparatorPosition"), 230);
    // A preset of several steps brings it up; one that is no good is told and changes nothing.
    const auto save = [this](const char* path, const std::vector<Step>& list) {
        (void)data.write(path, PropertyList::toXml(PropertyDictionary{{"compositeAction", chain(list)}}));
    };
    save("Data/Presets/a.tvrn8preset.plist", {{"Replace text", {}}, {"Remove text", {}}});
    save("Data/Presets/b.tvrn8preset.plist", {{"Fly", {}}});
    controller().presetsManager().loadPresets();
    controller().applyPreset(1);
    EXPECT_EQ(frontEnd.presented.size(), 1u);
    EXPECT_FALSE(isShown());
    controller().applyPreset(0);
    EXPECT_THAT(stepNames(), ElementsAre("Replace text", "Remove text"));
    EXPECT_TRUE(isShown());
}

TEST_F(CommandsTest, RefusalsSpeakOnceAndOnlyToTheUser) {
    start();
    const std::string d = files.write("sub/d");
    const std::vector<std::string> bad{files.write("folder/a"), files.path("folder2"), files.path("folder"),
                                       files.path("missing")};
    SourceCommands& sources = controller().sourceCommands();
    EXPECT_THAT(sources.addPaths({bad[2], files.write("folder2/b")}), IsEmpty());
    EXPECT_EQ(sources.addPaths({bad[0], bad[1], files.write("folder2/c"), bad[2], bad[3]}), bad);
    EXPECT_TRUE(controller().addFilePaths(bad, false));
    frontEnd.expect("alert filesNotAdded");
    EXPECT_TRUE(controller().applicationOpenFiles(bad));
    // The panel starts where it was last.
    controller().globalSettings().setLastAddDirectory("/somewhere");
    for (const auto& given : {std::optional(FilesToAdd{{d}, files.path("sub")}), {}}) {
        frontEnd.expect("files to add", given);
        controller().showFileDialog();
        EXPECT_EQ(controller().globalSettings().lastAddDirectory(), files.path("sub"));
    }
    EXPECT_THAT(frontEnd.events, Contains("panel starts at /somewhere"));
    waitForPreview();
    EXPECT_THAT(table(), ElementsAre("b > Image_01", "c > Image_02", "d > Image_03", "folder > Image_04"));
}

TEST_F(CommandsTest, ARunIsTakenBackWhenTheUserSaysSoAndOneThatWasCutOffIsFinished) {
    options.history = {data.path("runs"), "window"};
    start();
    setSteps({{"Make uppercase", {{"fragmentSelection", 0}}}});
    add({"box/a", "box/b"});
    rename();
    TakeBackCommands& takeBacks = controller().takeBackCommands();
    const auto undo = [&] {
        takeBacks.takeBack(RunKind::undo);
        takeBacks.takeBack(RunKind::undo); // a question at a time
        waitUntilIdle();
        waitUntilIdle();
    };
    EXPECT_EQ(takeBacks.description(RunKind::undo), "Undo Rename of 2 Items in box");
    EXPECT_EQ(takeBacks.description(RunKind::redo), "");
    frontEnd.expect("take back Undo Rename of 2 Items in box?", false);
    undo();
    EXPECT_EQ(frontEnd.takeBack.value().rows.front().newName, u"a");
    EXPECT_TRUE(files.kind("box/A"));
    frontEnd.expect("take back Undo Rename of 2 Items in box?", true);
    frontEnd.expect("alert summary");
    undo();
    EXPECT_TRUE(files.kind("box/a") && files.kind("box/b") && !files.kind("box/A"));
    waitForPreview();
    EXPECT_THAT(table(), ElementsAre("a > A", "b > B"));
    EXPECT_EQ(takeBacks.description(RunKind::redo), "Redo Rename of 2 Items in box");
    frontEnd.expect("alert nothingToTakeBack"); // said, not passed over
    takeBacks.takeBack(RunKind::undo);
    waitUntilIdle();

    std::filesystem::remove_all(options.history.folder);
    rename();
    const PastRun run = RunHistory(options.history.folder).runs().front();
    EXPECT_EQ(run.heading.who, "window");
    const std::string record = run.path.substr(data.path().size() + 1);
    const std::string text = data.read(record);
    data.write(record, text.substr(0, text.rfind("done\t")));
    std::filesystem::rename(files.path("box/B"), files.path("box/b"));
    frontEnd.expect("alert interruptedRun", AlertAnswer{1});
    frontEnd.expect("take back Finish Rename in box?", true);
    frontEnd.expect("alert summary");
    takeBacks.tellInterruptedRun();
    waitUntilIdle();
    waitUntilIdle();
    EXPECT_TRUE(files.kind("box/A") && files.kind("box/B"));
    takeBacks.tellInterruptedRun(); // seen to: no word of it
    waitUntilIdle();
}

} // namespace
} // namespace tavrin::test
