#include "platform/propertylists/PropertyList.h"
#include "shell/ShellFixture.h"

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
    EXPECT_EQ(controller().compositeAction().getCurrentAction().getParamString("string"), u"X");
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
    (void)data.write("Data/Presets/a.tvrn8preset.plist",
                     PropertyList::toXml(
                         PropertyDictionary{{"compositeAction", chain({{three[1], {}}, {three[2], {}}})}}));
    (void)data.write("Data/Presets/b.tvrn8preset.plist",
                     PropertyList::toXml(PropertyDictionary{{"compositeAction", chain({{"Fly", {}}})}}));
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

} // namespace
} // namespace tavrin::test
