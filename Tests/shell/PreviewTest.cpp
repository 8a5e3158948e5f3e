#include "actions/SortBasedAction.h"
#include "shell/ShellFixture.h"
#include "shell/preview/DNDArrayController.h"

namespace tavrin::test {
namespace {

using Order = std::vector<SortDescriptor>;

class PreviewControlTest : public ShellFixture {
  protected:
    void startWith(const std::vector<Step>& steps) {
        start();
        setSteps(steps);
        waitForPreview();
    }
    /// Whether what was done since the last look has asked for a preview.
    bool asksForPreview() {
        const bool isPending = controller().previewControl().isPreviewPending();
        waitForPreview();
        return isPending;
    }
    const Order& order() { return controller().nodeController().sortDescriptors(); }
    void select(int index) { controller().compositeAction().setCurrentActionIndex(index); }
    void choose(const char* action) {
        controller().actionListCommands().chooseAction(*catalogue.popUpMenuIndexForName(action));
    }
    BaseRenameAction& current() { return controller().compositeAction().getCurrentAction(); }
};

const Order naturalOrder{{NodeKey::smartName, true}};
const Order manualOrder{{NodeKey::manualOrder, true}};

TEST_F(PreviewControlTest, ABurstOfChangesIsOneRequestThatComesAfterTheLast) {
    start();
    EXPECT_TRUE(frontEnd.hiddenColumns[PreviewColumn::path]);
    EXPECT_FALSE(frontEnd.hiddenColumns[PreviewColumn::currentName]);
    const int before = frontEnd.finishedPreviews;
    for (const char* key : {"showPath", "showCurrentName", "showPath"}) {
        set(key, key == std::string("showPath"));
        loop.advance(std::chrono::milliseconds(200));
        EXPECT_EQ(frontEnd.finishedPreviews, before);
    }
    EXPECT_TRUE(asksForPreview());
    EXPECT_EQ(frontEnd.finishedPreviews, before + 1);
    EXPECT_FALSE(asksForPreview());
    EXPECT_FALSE(frontEnd.hiddenColumns[PreviewColumn::path]);
    EXPECT_TRUE(frontEnd.hiddenColumns[PreviewColumn::currentName]);
}

TEST_F(PreviewControlTest, TheFunnelAnswersEachChangeAsItShould) {
    startWith({{"Add to end", {}}, {"Produce numbered list", {}}, {"Replace text", {}}});
    CompositeRenameAction& composite = controller().compositeAction();
    ActionListCommands& commands = controller().actionListCommands();
    // At which step what is done, whether it asks for a preview, and the event that comes of it.
    const std::tuple<int, const char*, std::function<void()>, bool, std::string> cases[] = {
        {0, "setting", [&] { set("processSubfolders", 1); }, true, ""},
        {0, "the same value", [&] { set("processSubfolders", 1); }, true, ""},
        {0, "last folder", [&] { set("lastAddDirectory", u"/tmp"); }, false, ""},
        {0, "another step", [&] { select(1); }, false, "panel Produce numbered list"},
        {0, "parameter", [&] { current().setValue(u"X", "string"); }, true, ""},
        {0, "another's", [&] { composite.actionAtIndex(2).setValue(u"a", "searchTerm"); }, true, ""},
        {0, "switched off", [&] { current().setValue(0, "active"); }, true, ""},
        {0, "fragment", [&] { composite.setFragmentSelection(2); }, true, ""},
        {0, "step moved", [&] { commands.nudgeActionDown(); }, true, "panel Add to end"},
        {2, "moved at the end", [&] { commands.nudgeActionDown(); }, false, "beep"},
        {0, "moved at the front", [&] { commands.nudgeActionUp(); }, false, "beep"},
        {0, "step added", [&] { commands.addAction(); }, true, "panel Produce numbered list"},
        {1, "step removed", [&] { commands.removeAction(); }, true, "panel Produce numbered list"},
        {0, "another action", [&] { choose("Remove text"); }, true, "panel Remove text"},
        {0, "defaults", [&] { commands.resetToDefaults(); }, true, ""},
        {0, "all but one removed", [&] { commands.clearActions(); }, true, "panel Remove text"},
        {0, "invisible files", [&] { defaults.setObject("showInvisibles", true); }, true, ""},
        {0, "another default", [&] { defaults.setObject("tagLibraryTabIndex", 1); }, false, ""},
        {0, "run begins", [&] { controller().startProgressWindow(); }, true, "run begins"},
        {0, "run ends", [&] { controller().stopProgressWindow(); }, true, "run ends"},
    };
    for (const auto& [at, what, change, preview, event] : cases) {
        SCOPED_TRACE(what);
        if (composite.getCurrentActionIndexAsInt() != at)
            select(at);
        frontEnd.events.clear();
        change();
        loop.runPosted();
        EXPECT_EQ(asksForPreview(), preview);
        if (event.empty())
            EXPECT_THAT(frontEnd.events, Not(Contains(StartsWith("panel"))));
        else
            EXPECT_THAT(frontEnd.events, Contains(event));
    }
}

TEST_F(PreviewControlTest, TheOrderOfTheListFollowsTheAction) {
    const Step text{"Add to end", {{"string", u"X"}}};
    startWith({text, {"Produce numbered list", {{"sortingMode", 3}, {"sortingMode2", 14}}}, text});
    EXPECT_EQ(order(), naturalOrder);
    const Order byDate{{NodeKey::modDate, false}}; // a mode without an order is left out
    const Order bySize{{NodeKey::size, true}};
    const std::pair<std::function<void()>, Order> moves[] = {
        {[this] { select(1); }, byDate},
        {[this] { current().setValue(6, "sortingMode"); }, bySize},
        {[this] { select(2); }, naturalOrder},
        {[this] { select(1); }, bySize},
        // A numbering step that is replaced leaves natural order behind, although it is gone.
        {[this] { choose("Remove text"); }, naturalOrder}};
    for (const auto& [move, expected] : moves) {
        move();
        set("showPath", 0);
        waitForPreview();
        EXPECT_EQ(order(), expected) << current().actionName();
    }
}

TEST_F(PreviewControlTest, OfManyNewRowsTheFirstHaveTheirNamesBeforeTheRest) {
    for (int i = 0; i < 1200; ++i)
        (void)files.write("f/" + std::to_string(i));
    const Step numbers{"Produce numbered list", {{"sortingMode", 10}}};
    // The chain, and whether its names can be told before the items have been looked at.
    const std::tuple<const char*, std::vector<Step>, bool> cases[] = {
        {"text", {{"Add to end", {{"string", u"X"}}}}, true},
        {"numbers", {{"Add to end", {{"string", u"X"}}}, numbers}, true},
        {"numbers by date", {{"Produce numbered list", {{"sortingMode", 2}}}}, false},
        {"numbers by folder", {{"Produce numbered list", {{"sortEachFolderSeparately", 1}}}}, false},
        {"dates", {{"Produce numbered list", {}}, {"Add date to end", {}}}, false}};
    start();
    set("processFolders", 0);
    ASSERT_TRUE(controller().nodeController().isEmpty()); // somebody looks at the list
    set("processSubfolders", 1);
    for (const auto& [name, steps, isEarly] : cases) {
        SCOPED_TRACE(name);
        controller().clearList();
        setSteps(steps);
        waitForPreview();
        std::vector<std::string> early;
        frontEnd.onListChanged = [&] {
            const bool isPartial =
                !controller().nodeController().isEmpty() && !controller().isRenameButtonEnabled();
            if (isPartial && early.empty())
                early = table();
        };
        controller().addFilePaths({files.path("f")}, true);
        waitForPreview();
        const std::vector<std::string> all = table();
        ASSERT_EQ(all.size(), 1200u);
        EXPECT_TRUE(controller().isRenameButtonEnabled());
        ASSERT_EQ(!early.empty(), isEarly);
        if (!isEarly)
            continue;
        EXPECT_TRUE(std::equal(all.begin(), all.begin() + 100, early.begin()));
        EXPECT_EQ(early.back(), "1199 > 1199");
        EXPECT_NE(all.back(), early.back());
    }
    frontEnd.onListChanged = [] {};
}

TEST_F(PreviewControlTest, ManualSortingAsksOnceAndTurnsTheActionRound) {
    startWith({{"Produce numbered list", {}}, {"Add to end", {}}});
    auto& numbering = dynamic_cast<SortBasedAction&>(current());
    frontEnd.expect("alert manualSorting", AlertAnswer{0, true});
    set("automaticSorting", false);
    EXPECT_TRUE(numbering.usingManualSorting());
    EXPECT_THAT(frontEnd.alerts.back().text, ::testing::EndsWith("use the manual ordering."));
    EXPECT_TRUE(frontEnd.alerts.back().hasSuppressionBox);
    EXPECT_TRUE(asksForPreview());
    EXPECT_EQ(order(), manualOrder);
    set("automaticSorting", true);
    EXPECT_FALSE(numbering.usingManualSorting());
    waitForPreview();
    set("automaticSorting", false); // the box was ticked
    EXPECT_TRUE(numbering.usingManualSorting());

    // An action without an order has a text and a memory of its own.
    set("automaticSorting", true);
    select(1);
    frontEnd.expect("alert manualSorting", AlertAnswer{0, false});
    set("automaticSorting", false);
    EXPECT_THAT(frontEnd.alerts.back().text, ::testing::EndsWith("bottom right of the preview list."));
    EXPECT_TRUE(defaults.boolForKey("showManualSortingAlert"));
    EXPECT_FALSE(defaults.boolForKey("showManualSortingSortBasedActionAlert"));
    waitForPreview();
    EXPECT_EQ(order(), manualOrder);
    // Moving to a numbering step in manual order turns that one round too.
    numbering.deactivateManualSortingIfNecessary();
    select(0);
    EXPECT_TRUE(numbering.usingManualSorting());
}

TEST_F(PreviewControlTest, TheStatusLineCountsAndRowsAreFetchedOnlyWhenTheyMayHaveChanged) {
    startWith({{"Replace text", {{"searchTerm", u"a"}, {"replacementTerm", u"b"}}}});
    add({"a1", "x2", "x3"});
    EXPECT_EQ(status(), "1 out of 3 items needs renaming.");
    PreviewList& list = controller().nodeController();
    EXPECT_THAT(table(), ElementsAre("a1 > b1", "x2 > x2", "x3 > x3"));
    const std::uint64_t fetches = list.fetchCount();
    current().setValue(u"c", "replacementTerm");
    waitForPreview();
    EXPECT_EQ(table().front(), "a1 > c1");
    EXPECT_EQ(list.fetchCount(), fetches);
    add({"a4"});
    EXPECT_THAT(table(), ElementsAre("a1 > c1", "a4 > c4", "x2 > x2", "x3 > x3"));
    EXPECT_EQ(list.fetchCount(), fetches + 1);
    EXPECT_EQ(list.rowAt(4), std::nullopt);
    for (const bool isOn : {false, true}) {
        set("processFiles", isOn);
        waitForPreview();
        EXPECT_EQ(status(), isOn ? "2 out of 4 items need renaming." : "No files selected.");
        EXPECT_EQ(table().size(), isOn ? 4U : 0U);
        EXPECT_EQ(controller().isRenameButtonEnabled(), isOn);
    }
    controller().clearPreview();
    waitForPreview();
    EXPECT_EQ(status(), "Please add files to be renamed to preview table above.");
    EXPECT_TRUE(controller().previewControl().isPreviewEmpty());
}

TEST_F(PreviewControlTest, ALongRunBringsTheBarUp) {
    start();
    loop.advance(std::chrono::milliseconds(2000));
    controller().progressInfo().updateIsDone(false);
    loop.runPosted();
    loop.advance(std::chrono::milliseconds(2500));
    EXPECT_THAT(frontEnd.events, Not(Contains("previewTab 0")));
    loop.advance(std::chrono::milliseconds(1600));
    EXPECT_THAT(frontEnd.events, Contains("previewTab 0"));
}

/// Rows are called by names of one letter, so a text is an order or a choice of them.
class DNDArrayControllerTest : public ShellFixture {
  protected:
    DNDArrayControllerTest() {
        for (const char* key : {"showManualSortingAlert", "showManualSortingSortBasedActionAlert"})
            defaults.setObject(key, false);
        start();
        setSteps({{"Add to end", {}}});
    }
    DNDArrayController& dragging() { return controller().dndArrayController(); }
    std::string names() {
        std::string all;
        for (const std::string& line : table())
            all += line.front();
        return all;
    }
    RowId idOf(const std::string& name) {
        return name.empty() ? noRow : controller().nodeController().arrangedObjects()[names().find(name)];
    }
    std::vector<RowId> idsOf(const std::string& wanted) {
        std::vector<RowId> ids;
        for (const char name : wanted)
            ids.push_back(idOf({name}));
        return ids;
    }
};

/// The rows are told by their ids, so it does not matter which of them are on show.
TEST_F(DNDArrayControllerTest, PutsDraggedRowsAtThePlaceOfTheDrop) {
    add({"a", "b", "c", "d"});
    for (const auto& [dragged, row, isBehind, order] : {std::tuple{"bc", "d", true, "adbc"},
                                                        {"d", "a", false, "dabc"},
                                                        {"ca", "b", false, "acbd"},
                                                        {"a", "c", true, "bcad"},
                                                        {"b", "b", true, "abcd"},
                                                        {"abcd", "c", false, "abcd"},
                                                        {"ad", "", false, "bcad"}}) { // at the end
        set("automaticSorting", true);
        waitForPreview();
        ASSERT_EQ(names(), "abcd");
        ASSERT_TRUE(dragging().writeRows(idsOf(dragged)));
        dragging().acceptRows({idOf(row), isBehind});
        EXPECT_EQ(names(), order) << dragged << " to " << row;
        EXPECT_FALSE(settings().automaticSorting);
        // The end of the same drag removes nothing, and the next preview keeps the order.
        EXPECT_FALSE(dragging().deleteRowsIfAppropriate());
        waitForPreview();
        EXPECT_EQ(names(), order);
    }
    // A row that has gone in the meantime is no place, and cannot be moved.
    const RowId gone = idOf("b");
    controller().removeFile({gone});
    waitForPreview();
    EXPECT_FALSE(controller().sourceCommands().canRemove({gone}));
    dragging().insertRows(idsOf("a"), {gone});
    EXPECT_EQ(names(), "cad");
    dragging().insertRows({gone, idOf("d")}, {idOf("c")});
    EXPECT_EQ(names(), "dca");
}

TEST_F(DNDArrayControllerTest, RemovesWhatIsDraggedOutAndSaysWhatStays) {
    set("processSubfolders", 1);
    (void)files.write("f/i");
    controller().addFilePaths({files.path("f")}, true);
    add({"z"});
    // Given up: nothing happens.
    ASSERT_TRUE(dragging().writeRows(idsOf("z")));
    dragging().cancelDrag();
    EXPECT_FALSE(dragging().deleteRowsIfAppropriate());
    for (const auto& [dragged, removes, left] :
         {std::tuple{"i", false, "fiz"}, {"zi", true, "fi"}, {"f", true, ""}}) {
        SCOPED_TRACE(dragged);
        EXPECT_EQ(controller().sourceCommands().canRemove(idsOf(dragged)), removes);
        if (*left) // is told of what stays
            frontEnd.expect("alert itemsNotRemoved");
        ASSERT_TRUE(dragging().writeRows(idsOf(dragged)));
        EXPECT_EQ(dragging().deleteRowsIfAppropriate(), removes);
        EXPECT_TRUE(frontEnd.isScriptOver());
        waitForPreview();
        EXPECT_EQ(names(), left);
    }
    EXPECT_EQ(frontEnd.alerts.back().text, "Items in subfolders cannot be removed individually.");
    EXPECT_TRUE(files.kind("z")); // files are never touched
}

} // namespace
} // namespace tavrin::test
