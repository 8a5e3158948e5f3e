#include "actions/SortBasedAction.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

using ::testing::ElementsAre;

class PreviewControlTest : public ShellFixture {
  protected:
    PreviewControl& preview() { return controller().previewControl(); }
    /// Whether what was done since the last look has asked for a preview.
    bool asksForPreview() {
        const bool isPending = preview().isPreviewPending();
        waitForPreview();
        return isPending;
    }
    const std::vector<SortDescriptor>& order() { return controller().nodeController().sortDescriptors(); }
    void addFiles(const std::vector<std::string>& names) {
        std::vector<std::string> paths;
        for (const std::string& name : names)
            paths.push_back(files.write(name));
        controller().addFilePaths(paths, true);
        waitForPreview();
    }
    BaseRenameAction& current() { return controller().compositeAction().getCurrentAction(); }
};

const std::vector<SortDescriptor> naturalOrder{{NodeKey::smartName, true}};
const std::vector<SortDescriptor> manualOrder{{NodeKey::manualOrder, true}};

TEST_F(PreviewControlTest, ABurstOfChangesIsOneRequestThatComesAfterTheLast) {
    start();
    const int before = frontEnd.finishedPreviews;
    for (int i = 0; i < 3; ++i) {
        set("showPath", i % 2);
        loop.advance(std::chrono::milliseconds(200));
        EXPECT_EQ(frontEnd.finishedPreviews, before);
    }
    waitForPreview();
    EXPECT_EQ(frontEnd.finishedPreviews, before + 1);
    EXPECT_FALSE(preview().isPreviewPending());
}

TEST_F(PreviewControlTest, TheFunnelAnswersEachChangeAsItShould) {
    start();
    setSteps({{"Add to end", {}}, {"Produce numbered list", {}}, {"Replace text", {}}});
    waitForPreview();
    struct Case {
        const char* what;
        std::function<void()> change;
        bool preview;
        const char* event; ///< that the front end must see, or empty
    };
    CompositeRenameAction& composite = controller().compositeAction();
    ActionListCommands& commands = controller().actionListCommands();
    const std::vector<Case> cases{
        {"setting", [&] { set("processSubfolders", 1); }, true, ""},
        {"the same value again", [&] { set("processSubfolders", 1); }, true, ""},
        {"last folder", [&] { set("lastAddDirectory", u"/tmp"); }, false, ""},
        {"another step", [&] { composite.setCurrentActionIndex(1); }, false, "panel Produce numbered list"},
        {"back", [&] { composite.setCurrentActionIndex(0); }, false, "panel Add to end"},
        {"parameter of the step", [&] { current().setValue(u"X", "string"); }, true, ""},
        {"parameter of another step", [&] { composite.actionAtIndex(2).setValue(u"a", "searchTerm"); }, true,
         ""},
        {"switched off", [&] { current().setValue(0, "active"); }, true, ""},
        {"fragment of the step", [&] { composite.setFragmentSelection(2); }, true, ""},
        {"step moved", [&] { commands.nudgeActionDown(); }, true, "panel Add to end"},
        {"step moved at the end",
         [&] {
             composite.setCurrentActionIndex(2);
             commands.nudgeActionDown();
         },
         false, "beep"},
        {"step moved at the front",
         [&] {
             composite.setCurrentActionIndex(0);
             commands.nudgeActionUp();
         },
         false, "beep"},
        {"step added", [&] { commands.addAction(); }, true, "panel Produce numbered list"},
        {"step removed", [&] { commands.removeAction(); }, true, "panel Produce numbered list"},
        {"another action", [&] { commands.chooseAction(*catalogue.popUpMenuIndexForName("Remove text")); },
         true, "panel Remove text"},
        {"defaults", [&] { commands.resetToDefaults(); }, true, ""},
        {"all but one removed", [&] { commands.clearActions(); }, true, "panel Remove text"},
        {"invisible files",
         [&] {
             defaults.setObject("showInvisibles", true);
             loop.runPosted();
         },
         true, ""},
        {"another default",
         [&] {
             defaults.setObject("tagLibraryTabIndex", 1);
             loop.runPosted();
         },
         false, ""},
        {"run begins", [&] { controller().startProgressWindow(); }, true, "run begins"},
        {"run ends", [&] { controller().stopProgressWindow(); }, true, "run ends"},
    };
    for (const Case& each : cases) {
        frontEnd.events.clear();
        each.change();
        EXPECT_EQ(asksForPreview(), each.preview) << each.what;
        if (*each.event)
            EXPECT_THAT(frontEnd.events, ::testing::Contains(each.event)) << each.what;
        else
            EXPECT_THAT(frontEnd.events, ::testing::Not(::testing::Contains(::testing::StartsWith("panel"))))
                << each.what;
    }
}

TEST_F(PreviewControlTest, TheOrderOfTheListFollowsTheAction) {
    start();
    addFiles({"a"});
    const Step text{"Add to end", {{"string", u"X"}}};
    const Step number{"Produce numbered list", {{"sortingMode", 3}, {"sortingMode2", 14}}};
    setSteps({text, number, text});
    waitForPreview();
    EXPECT_EQ(order(), naturalOrder);
    CompositeRenameAction& composite = controller().compositeAction();
    const auto moveTo = [&](int index) {
        composite.setCurrentActionIndex(index);
        set("showPath", 0);
        waitForPreview();
        return order();
    };
    const std::vector<SortDescriptor> byDate{{NodeKey::modDate, false}};
    EXPECT_EQ(moveTo(1), byDate); // a mode without an order is left out
    EXPECT_EQ(moveTo(2), naturalOrder);
    EXPECT_EQ(moveTo(1), byDate);
    current().setValue(6, "sortingMode");
    waitForPreview();
    EXPECT_EQ(order(), (std::vector<SortDescriptor>{{NodeKey::size, true}}));
    // From text to text the order stays, whatever it is.
    EXPECT_EQ(moveTo(0), naturalOrder);
    EXPECT_EQ(moveTo(2), naturalOrder);
    // A numbering step that is replaced leaves natural order behind, although it is gone.
    EXPECT_EQ(moveTo(1), (std::vector<SortDescriptor>{{NodeKey::size, true}}));
    controller().actionListCommands().chooseAction(*catalogue.popUpMenuIndexForName("Remove text"));
    waitForPreview();
    EXPECT_EQ(order(), naturalOrder);
}

TEST_F(PreviewControlTest, ManualSortingAsksOnceAndTurnsTheActionRound) {
    start();
    setSteps({{"Produce numbered list", {}}, {"Add to end", {}}});
    waitForPreview();
    auto& numbering = dynamic_cast<SortBasedAction&>(current());
    frontEnd.expect("alert manualSorting", AlertAnswer{0, true});
    controller().globalSettings().setAutomaticSorting(false);
    EXPECT_TRUE(numbering.usingManualSorting());
    EXPECT_THAT(frontEnd.alerts.back().text, ::testing::EndsWith("use the manual ordering."));
    EXPECT_TRUE(frontEnd.alerts.back().hasSuppressionBox);
    EXPECT_TRUE(asksForPreview());
    EXPECT_EQ(order(), manualOrder);

    controller().globalSettings().setAutomaticSorting(true);
    EXPECT_FALSE(numbering.usingManualSorting());
    waitForPreview();
    controller().globalSettings().setAutomaticSorting(false); // the box was ticked
    EXPECT_TRUE(numbering.usingManualSorting());

    // An action without an order has a text and a memory of its own.
    controller().globalSettings().setAutomaticSorting(true);
    controller().compositeAction().setCurrentActionIndex(1);
    frontEnd.expect("alert manualSorting", AlertAnswer{0, false});
    controller().globalSettings().setAutomaticSorting(false);
    EXPECT_THAT(frontEnd.alerts.back().text, ::testing::EndsWith("bottom right of the preview list."));
    EXPECT_TRUE(defaults.boolForKey("showManualSortingAlert"));
    EXPECT_FALSE(defaults.boolForKey("showManualSortingSortBasedActionAlert"));
    waitForPreview();
    EXPECT_EQ(order(), manualOrder);

    // Moving to a numbering step in manual order turns that one round too.
    numbering.deactivateManualSortingIfNecessary();
    controller().compositeAction().setCurrentActionIndex(0);
    EXPECT_TRUE(numbering.usingManualSorting());
}

TEST_F(PreviewControlTest, TheStatusLineCounts) {
    start();
    setSteps({{"Replace text", {{"searchTerm", u"a"}, {"replacementTerm", u"b"}}}});
    waitForPreview();
    EXPECT_EQ(status(), "Please add files to be renamed to preview table above.");
    addFiles({"a1", "x2", "x3"});
    EXPECT_EQ(status(), "1 out of 3 items needs renaming.");
    addFiles({"a4"});
    EXPECT_EQ(status(), "2 out of 4 items need renaming.");
    set("processFiles", 0);
    waitForPreview();
    EXPECT_EQ(status(), "No files selected.");
    EXPECT_TRUE(table().empty());
    EXPECT_FALSE(controller().isRenameButtonEnabled());
    set("processFiles", 1);
    waitForPreview();
    EXPECT_THAT(table(), ElementsAre("a1 > b1", "a4 > b4", "x2 > x2", "x3 > x3"));
    EXPECT_TRUE(controller().isRenameButtonEnabled());
    controller().clearPreview();
    waitForPreview();
    EXPECT_EQ(status(), "Please add files to be renamed to preview table above.");
    EXPECT_TRUE(controller().previewControl().isPreviewEmpty());
}

TEST_F(PreviewControlTest, ARefetchIsFreeWhileNothingOfItHasChanged) {
    start();
    setSteps({{"Add to end", {{"string", u"X"}}}});
    addFiles({"a", "b"});
    PreviewList& list = controller().nodeController();
    EXPECT_THAT(table(), ElementsAre("a > aX", "b > bX"));
    const std::uint64_t fetches = list.fetchCount();
    current().setValue(u"Y", "string");
    waitForPreview();
    EXPECT_THAT(table(), ElementsAre("a > aY", "b > bY"));
    EXPECT_EQ(list.fetchCount(), fetches);
    addFiles({"c"});
    EXPECT_THAT(table(), ElementsAre("a > aY", "b > bY", "c > cY"));
    EXPECT_EQ(list.fetchCount(), fetches + 1);
    EXPECT_EQ(list.rowAt(3), std::nullopt);
}

TEST_F(PreviewControlTest, ColumnsShowAsSet) {
    start();
    EXPECT_TRUE(frontEnd.hiddenColumns[PreviewColumn::path]);
    EXPECT_FALSE(frontEnd.hiddenColumns[PreviewColumn::currentName]);
    EXPECT_TRUE(frontEnd.hiddenColumns[PreviewColumn::regex1]);
    set("showPath", 1);
    set("showCurrentName", 0);
    waitForPreview();
    EXPECT_FALSE(frontEnd.hiddenColumns[PreviewColumn::path]);
    EXPECT_TRUE(frontEnd.hiddenColumns[PreviewColumn::currentName]);
}

TEST_F(PreviewControlTest, ALongRunBringsTheBarUp) {
    start();
    loop.advance(std::chrono::milliseconds(2000));
    EXPECT_THAT(frontEnd.events, ::testing::Not(::testing::Contains("previewTab 0")));
    controller().progressInfo().updateIsDone(false);
    loop.runPosted();
    loop.advance(std::chrono::milliseconds(2500));
    EXPECT_THAT(frontEnd.events, ::testing::Not(::testing::Contains("previewTab 0")));
    loop.advance(std::chrono::milliseconds(1600));
    EXPECT_THAT(frontEnd.events, ::testing::Contains("previewTab 0"));
}

} // namespace
} // namespace tavrin::test
