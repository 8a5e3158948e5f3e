#include "shell/preview/DNDArrayController.h"

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
