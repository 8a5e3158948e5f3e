#include "shell/preview/DNDArrayController.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "shell/ShellFixture.h"

namespace tavrin::test {
namespace {

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
        const std::size_t found = names().find(name);
        return name.empty() || found == std::string::npos
                   ? noRow
                   : controller().nodeController().arrangedObjects()[found];
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
    struct Case {
        const char* dragged;
        const char* row; ///< empty: the end
        bool isBehind;
        const char* order;
    };
    add({"a", "b", "c", "d"});
    for (const Case& each : {Case{"bc", "", false, "adbc"},
                             {"bc", "d", true, "adbc"},
                             {"d", "a", false, "dabc"},
                             {"ca", "b", false, "acbd"},
                             {"a", "c", true, "bcad"},
                             {"a", "a", false, "abcd"},
                             {"b", "b", true, "abcd"},
                             {"abcd", "c", false, "abcd"},
                             {"ad", "", false, "bcad"}}) {
        set("automaticSorting", true);
        waitForPreview();
        ASSERT_EQ(names(), "abcd");
        ASSERT_TRUE(dragging().writeRows(idsOf(each.dragged)));
        dragging().acceptRows({idOf(each.row), each.isBehind});
        EXPECT_EQ(names(), each.order) << each.dragged << " to " << each.row;
        EXPECT_FALSE(controller().globalSettings().values().automaticSorting);
        // The end of the same drag removes nothing, and the next preview keeps the order.
        EXPECT_FALSE(dragging().deleteRowsIfAppropriate());
        waitForPreview();
        EXPECT_EQ(names(), each.order);
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
    struct Case {
        const char* dragged;
        bool removes;
        bool isToldOfOthers;
        const char* left;
    };
    for (const Case& each :
         {Case{"i", false, true, "fiz"}, {"zi", true, true, "fi"}, {"f", true, false, ""}}) {
        SCOPED_TRACE(each.dragged);
        EXPECT_EQ(controller().sourceCommands().canRemove(idsOf(each.dragged)), each.removes);
        if (each.isToldOfOthers)
            frontEnd.expect("alert itemsNotRemoved");
        ASSERT_TRUE(dragging().writeRows(idsOf(each.dragged)));
        EXPECT_EQ(dragging().deleteRowsIfAppropriate(), each.removes);
        EXPECT_TRUE(frontEnd.isScriptOver());
        waitForPreview();
        EXPECT_EQ(names(), each.left);
    }
    EXPECT_EQ(frontEnd.alerts.back().text, "Items in subfolders cannot be removed individually.");
    EXPECT_TRUE(files.kind("z")); // files are never touched
}

} // namespace
} // namespace tavrin::test
