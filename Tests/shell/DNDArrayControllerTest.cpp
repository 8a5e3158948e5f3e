#include "shell/preview/DNDArrayController.h"

#include "ShellFixture.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"

#include <algorithm>

namespace tavrin::test {
namespace {

using Place = DNDArrayController::Place;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class DNDArrayControllerTest : public ShellFixture {
  protected:
    DNDArrayControllerTest() {
        for (const char* key : {"showManualSortingAlert", "showManualSortingSortBasedActionAlert"})
            defaults.setObject(key, false);
        start();
        setSteps({{"Add to end", {}}});
    }
    DNDArrayController& dragging() { return controller().dndArrayController(); }
    std::vector<std::string> names() {
        std::vector<std::string> result;
        for (const std::string& line : table())
            result.push_back(line.substr(0, line.find(" > ")));
        return result;
    }
    RowId idOf(const std::string& name) {
        const std::vector<std::string> all = names();
        const auto found = static_cast<std::size_t>(std::ranges::find(all, name) - all.begin());
        return found == all.size() ? noRow : controller().nodeController().arrangedObjects()[found];
    }
    std::vector<RowId> idsOf(const std::vector<std::string>& wanted) {
        std::vector<RowId> ids;
        for (const std::string& name : wanted)
            ids.push_back(idOf(name));
        return ids;
    }
};

/// The rows are told by their ids, so it does not matter which of them are on show.
TEST_F(DNDArrayControllerTest, PutsDraggedRowsAtThePlaceOfTheDrop) {
    struct Case {
        std::vector<std::string> dragged;
        const char* row; ///< empty: the end
        bool isBehind;
        std::vector<std::string> order;
    };
    const Case cases[] = {{{"b", "c"}, "", false, {"a", "d", "b", "c"}},
                          {{"b", "c"}, "d", true, {"a", "d", "b", "c"}},
                          {{"d"}, "a", false, {"d", "a", "b", "c"}},
                          {{"c", "a"}, "b", false, {"a", "c", "b", "d"}},
                          {{"a"}, "c", true, {"b", "c", "a", "d"}},
                          {{"a"}, "a", false, {"a", "b", "c", "d"}},
                          {{"b"}, "b", true, {"a", "b", "c", "d"}},
                          {{"a", "b", "c", "d"}, "c", false, {"a", "b", "c", "d"}},
                          {{"a", "d"}, "", false, {"b", "c", "a", "d"}}};
    add({"a", "b", "c", "d"});
    for (const Case& each : cases) {
        SCOPED_TRACE(each.dragged.front() + " to " + each.row);
        set("automaticSorting", true);
        waitForPreview();
        ASSERT_THAT(names(), ElementsAre("a", "b", "c", "d"));
        ASSERT_TRUE(dragging().writeRows(idsOf(each.dragged)));
        dragging().acceptRows({idOf(each.row), each.isBehind});
        EXPECT_THAT(names(), ElementsAreArray(each.order));
        EXPECT_FALSE(controller().globalSettings().values().automaticSorting);
        // The end of the same drag removes nothing, and the next preview keeps the order.
        EXPECT_FALSE(dragging().deleteRowsIfAppropriate());
        waitForPreview();
        EXPECT_THAT(names(), ElementsAreArray(each.order));
    }
    // A row that has gone in the meantime is no place, and cannot be moved.
    const RowId gone = idOf("b");
    controller().removeFile({gone});
    waitForPreview();
    EXPECT_FALSE(controller().sourceCommands().canRemove({gone}));
    dragging().insertRows(idsOf({"a"}), {gone});
    EXPECT_THAT(names(), ElementsAre("c", "a", "d"));
    dragging().insertRows({gone, idOf("d")}, {idOf("c")});
    EXPECT_THAT(names(), ElementsAre("d", "c", "a"));
}

TEST_F(DNDArrayControllerTest, RemovesWhatIsDraggedOutAndSaysWhatStays) {
    set("processSubfolders", 1);
    (void)files.write("folder/inside");
    controller().addFilePaths({files.path("folder")}, true);
    add({"z"});
    // Given up: nothing happens.
    ASSERT_TRUE(dragging().writeRows(idsOf({"z"})));
    dragging().cancelDrag();
    EXPECT_FALSE(dragging().deleteRowsIfAppropriate());
    struct Case {
        std::vector<std::string> dragged;
        bool removes;
        bool isToldOfOthers;
        std::vector<std::string> left;
    };
    for (const Case& each : {Case{{"inside"}, false, true, {"folder", "inside", "z"}},
                             {{"z", "inside"}, true, true, {"folder", "inside"}},
                             {{"folder"}, true, false, {}}}) {
        SCOPED_TRACE(each.dragged.front());
        EXPECT_EQ(controller().sourceCommands().canRemove(idsOf(each.dragged)), each.removes);
        if (each.isToldOfOthers)
            frontEnd.expect("alert itemsNotRemoved");
        ASSERT_TRUE(dragging().writeRows(idsOf(each.dragged)));
        EXPECT_EQ(dragging().deleteRowsIfAppropriate(), each.removes);
        EXPECT_TRUE(frontEnd.isScriptOver());
        waitForPreview();
        EXPECT_THAT(names(), ElementsAreArray(each.left));
    }
    EXPECT_EQ(frontEnd.alerts.back().text, "Items in subfolders cannot be removed individually.");
    EXPECT_TRUE(files.kind("z")); // files are never touched
}

} // namespace
} // namespace tavrin::test
