#include "engine/history/RunHistory.h"
#include "platform/propertylists/PropertyList.h"
#include "shell/ShellFixture.h"

#include <filesystem>

namespace tavrin::test {
namespace {

using ::testing::ElementsAre;

class CommandsTest : public ShellFixture {
  protected:
    ActionListCommands& commands() { return controller().actionListCommands(); }
    void startWith(const std::vector<Step>& steps, int index) {
        start();
        setSteps(steps);
        controller().compositeAction().setCurrentActionIndex(index);
        frontEnd.events.clear();
    }
};

const std::vector<std::string> three{"Add to end", "Replace text", "Remove text"};

TEST_F(CommandsTest, StepsComeAndGoAndTheCurrentOneIsTheNearest) {
    startWith({{three[0], {{"string", u"X"}}}, {three[1], {}}, {three[2], {}}}, 0);
    const auto left = [this] {
        std::string all = std::to_string(controller().compositeAction().getCurrentActionIndexAsInt());
        for (const std::string& name : stepNames())
            all += ", " + name;
        return all;
    };
    commands().addAction();
    EXPECT_EQ(left(), "1, Add to end, Add to end, Replace text, Remove text");
    commands().moveAction(1, 3);
    EXPECT_EQ(left(), "3, Add to end, Replace text, Remove text, Add to end");
    commands().resetToDefaults();
    EXPECT_EQ(controller().compositeAction().actionAtIndex(0).getParamString("string"), u"X");
    EXPECT_EQ(controller().compositeAction().actionAtIndex(3).getParamString("string"), u"");
    commands().removeAction();
    EXPECT_EQ(left(), "2, Add to end, Replace text, Remove text");
    controller().compositeAction().setCurrentActionIndex(0);
    commands().removeAction();
    EXPECT_EQ(left(), "0, Replace text, Remove text");
    commands().clearActions();
    commands().removeAction();
    EXPECT_EQ(left(), "0, Replace text");
}

TEST_F(CommandsTest, TheListOfStepsShowsHidesAndKeepsItsWidth) {
    startWith({{three[0], {}}}, 0);
    ActionListCommands& pane = commands();
    // A window reports the moves that are made for it as well.
    frontEnd.onDividerMoved = [&](double position) {
        pane.splitViewDidResizeSubviews(position == 0, position);
    };
    controller().showMultistepDrawer();
    EXPECT_THAT(frontEnd.events, ElementsAre("divider 150"));
    EXPECT_EQ(controller().globalSettings().values().shouldShowMultistepDrawer, 1);
    pane.splitViewDidResizeSubviews(false, 90);
    EXPECT_EQ(defaults.floatForKey("actionListSeparatorPosition"), 150);
    pane.splitViewDidResizeSubviews(false, 230);
    pane.splitViewDidResizeSubviews(true, 0);
    EXPECT_EQ(controller().globalSettings().values().shouldShowMultistepDrawer, 0);
    controller().showMultistepDrawer();
    EXPECT_EQ(frontEnd.events.back(), "divider 230");
    controller().showMultistepDrawer();
    EXPECT_EQ(frontEnd.events.back(), "divider 0");
    EXPECT_EQ(controller().globalSettings().values().shouldShowMultistepDrawer, 0);
    EXPECT_EQ(defaults.floatForKey("actionListSeparatorPosition"), 230);
    EXPECT_TRUE(pane.canCollapse());
    commands().addAction();
    EXPECT_FALSE(pane.canCollapse());
}

TEST_F(CommandsTest, APresetOfTheMenuShowsItsSteps) {
    startWith({{three[0], {}}}, 0);
    const auto save = [this](const char* name, const std::vector<Step>& steps) {
        (void)data.write("Data/Presets/" + std::string(name) + ".tvrn8preset.plist",
                         PropertyList::toXml(PropertyDictionary{{"compositeAction", chain(steps)}}));
    };
    save("a", {{three[1], {}}, {three[2], {}}});
    save("b", {{"Fly", {}}});
    controller().presetsManager().loadPresets();
    controller().updatePresetsMenu();
    EXPECT_EQ(frontEnd.events.back(), "fillPresetMenu 2");
    controller().applyPreset(1);
    ASSERT_EQ(frontEnd.presented.size(), 1u);
    EXPECT_THAT(stepNames(), ElementsAre(three[0]));
    EXPECT_EQ(controller().globalSettings().values().shouldShowMultistepDrawer, 0);
    controller().applyPreset(0);
    EXPECT_THAT(stepNames(), ElementsAre(three[1], three[2]));
    EXPECT_EQ(controller().globalSettings().values().shouldShowMultistepDrawer, 1);
    EXPECT_TRUE(controller().previewControl().isPreviewPending());
}

TEST_F(CommandsTest, RefusalsSpeakOnceAndOnlyToTheUser) {
    start();
    (void)files.write("folder/a");
    (void)files.write("folder2/b");
    const std::string folder = files.path("folder");
    SourceCommands& sources = controller().sourceCommands();
    EXPECT_TRUE(sources.addPaths({folder, files.path("folder2/b")}).empty());
    const std::vector<std::string> bad{files.path("folder/a"), files.path("folder2"), folder,
                                       files.path("missing"), files.path("folder/missing")};
    const std::string good = files.write("folder2/c");
    EXPECT_EQ(sources.addPaths({bad[0], bad[1], good, bad[2], bad[3], bad[4]}), bad);
    EXPECT_TRUE(controller().addFilePaths(bad, false));
    frontEnd.expect("alert filesNotAdded");
    EXPECT_TRUE(controller().applicationOpenFiles(bad));
    waitForPreview();
    EXPECT_THAT(table(), ElementsAre("b > Image_01", "c > Image_02", "folder > Image_03"));
}

TEST_F(CommandsTest, TheFilePanelStartsWhereItWasLast) {
    start();
    setSteps({{"Add to end", {}}});
    const std::string path = files.write("sub/a");
    controller().globalSettings().setLastAddDirectory("/somewhere");
    frontEnd.expect("files to add", std::optional(FilesToAdd{{path}, files.path("sub")}));
    controller().showFileDialog();
    EXPECT_THAT(frontEnd.events, ::testing::Contains("panel starts at /somewhere"));
    EXPECT_EQ(controller().globalSettings().lastAddDirectory(), files.path("sub"));
    waitForPreview();
    EXPECT_THAT(table(), ElementsAre("a > a"));
    frontEnd.expect("files to add", std::optional<FilesToAdd>());
    controller().showFileDialog();
    EXPECT_EQ(controller().globalSettings().lastAddDirectory(), files.path("sub"));
    EXPECT_TRUE(controller().previewControl().isPreviewPending());
}

TEST_F(CommandsTest, ARunIsTakenBackWhenTheUserSaysSoAndTheListFollows) {
    options.history = {data.path("runs"), "window"};
    start();
    setSteps({{"Make uppercase", {{"fragmentSelection", 0}}}});
    add({"box/a", "box/b"});
    rename();
    TakeBackCommands& takeBacks = controller().takeBackCommands();
    const auto takeBack = [&](RunKind kind) {
        takeBacks.takeBack(kind);
        takeBacks.takeBack(kind); // a question at a time
        waitUntilIdle();
        waitUntilIdle();
        EXPECT_TRUE(frontEnd.isScriptOver());
    };
    EXPECT_EQ(takeBacks.description(RunKind::undo), "Undo Rename of 2 Items in box");
    EXPECT_EQ(takeBacks.description(RunKind::redo), "");
    frontEnd.expect("take back Undo Rename of 2 Items in box?", false);
    takeBack(RunKind::undo);
    ASSERT_TRUE(frontEnd.takeBack);
    EXPECT_EQ(frontEnd.takeBack->rows.size(), 2U);
    EXPECT_EQ(frontEnd.takeBack->rows.front().newName, u"a");
    EXPECT_TRUE(files.kind("box/A"));
    frontEnd.expect("take back Undo Rename of 2 Items in box?", true);
    frontEnd.expect("alert summary");
    takeBack(RunKind::undo);
    EXPECT_EQ(frontEnd.alerts.back().title, "2 file names were changed.");
    EXPECT_TRUE(files.kind("box/a") && files.kind("box/b") && !files.kind("box/A"));
    waitForPreview();
    EXPECT_THAT(table(), ElementsAre("a > A", "b > B"));
    EXPECT_EQ(takeBacks.description(RunKind::redo), "Redo Rename of 2 Items in box");
    // Nothing more to undo is said, not passed over.
    frontEnd.expect("alert nothingToTakeBack");
    takeBacks.takeBack(RunKind::undo);
    waitUntilIdle();
    EXPECT_EQ(RunHistory(options.history.folder).runs().front().heading.who, "window");
}

TEST_F(CommandsTest, AnInterruptedRunIsToldAtTheStart) {
    options.history = {data.path("runs"), "window"};
    start();
    setSteps({{"Make uppercase", {{"fragmentSelection", 0}}}});
    add({"box/a", "box/b"});
    rename();
    const std::string record =
        "runs/" +
        std::filesystem::path(RunHistory(data.path("runs")).runs().front().path).filename().string();
    const std::string text = data.read(record);
    data.write(record, text.substr(0, text.rfind("done\t")));
    std::filesystem::rename(files.path("box/B"), files.path("box/b"));
    frontEnd.expect("alert interruptedRun", AlertAnswer{1});
    frontEnd.expect("take back Finish Rename in box?", true);
    frontEnd.expect("alert summary");
    TakeBackCommands& takeBacks = controller().takeBackCommands();
    takeBacks.tellInterruptedRun();
    waitUntilIdle();
    waitUntilIdle();
    EXPECT_TRUE(files.kind("box/A") && files.kind("box/B"));
    takeBacks.tellInterruptedRun(); // seen to: no word of it
    waitUntilIdle();
}

} // namespace
} // namespace tavrin::test
