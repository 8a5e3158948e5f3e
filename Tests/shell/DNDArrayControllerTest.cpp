#include "shell/preview/DNDArrayController.h"

#include "ShellFixture.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace tavrin::test {

namespace {

using Place = DNDArrayController::Place;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

class DNDArrayControllerTest : public ShellFixture {
  protected:
    void startWith(const std::vector<std::string>& names) {
        start();
        for (const char* key : {"showManualSortingAlert", "showManualSortingSortBasedActionAlert"})
            defaults.setObject(key, false);
        for (const std::string& name : names)
            paths.push_back(files.write(name));
        controller().addFilePaths(paths, true);
        waitForPreview();
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
        const auto found = std::ranges::find(all, name);
        return found == all.end() ? noRow
                                  : controller()
                                        .nodeController()
                                        .arrangedObjects()[static_cast<std::size_t>(found - all.begin())];
    }
    std::vector<RowId> idsOf(const std::vector<std::string>& wanted) {
        std::vector<RowId> ids;
        for (const std::string& name : wanted)
            ids.push_back(idOf(name));
        return ids;
    }
    bool isAutomatic() { return controller().globalSettings().values().automaticSorting; }

    std::vector<std::string> paths;
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
    startWith({"a", "b", "c", "d"});
    for (const Case& each : cases) {
        SCOPED_TRACE(fmt::format("{} to {}", each.dragged.front(), each.row));
        set("automaticSorting", true);
        waitForPreview();
        ASSERT_THAT(names(), ElementsAre("a", "b", "c", "d"));
        ASSERT_TRUE(dragging().writeRows(idsOf(each.dragged)));
        dragging().acceptRows({idOf(each.row), each.isBehind});
        EXPECT_THAT(names(), ElementsAreArray(each.order));
        EXPECT_FALSE(isAutomatic());
        // The end of the same drag removes nothing, and the next preview keeps the order.
        EXPECT_FALSE(dragging().deleteRowsIfAppropriate());
        waitForPreview();
        EXPECT_THAT(names(), ElementsAreArray(each.order));
    }
    // A row that has gone in the meantime is no place, and cannot be moved.
    const RowId gone = idOf("b");
    controller().removeFile({gone});
    waitForPreview();
    dragging().insertRows(idsOf({"a"}), {gone});
    EXPECT_THAT(names(), ElementsAre("c", "a", "d"));
    dragging().insertRows({gone, idOf("d")}, {idOf("c")});
    EXPECT_THAT(names(), ElementsAre("d", "c", "a"));
}

TEST_F(DNDArrayControllerTest, RemovesWhatIsDraggedOutAndSaysWhatStays) {
    startWith({"a", "folder/inside"});
    controller().clearPreview();
    set("processSubfolders", 1);
    set("processFolders", 1);
    controller().addFilePaths({paths.front(), files.path("folder")}, true);
    waitForPreview();
    ASSERT_THAT(names(), ::testing::UnorderedElementsAre("a", "folder", "inside"));
    // Given up: nothing happens.
    ASSERT_TRUE(dragging().writeRows(idsOf({"a"})));
    dragging().cancelDrag();
    EXPECT_FALSE(dragging().deleteRowsIfAppropriate());

    frontEnd.expect("alert itemsNotRemoved");
    ASSERT_TRUE(dragging().writeRows(idsOf({"inside"})));
    EXPECT_FALSE(dragging().deleteRowsIfAppropriate());
    EXPECT_TRUE(frontEnd.isScriptOver());
    EXPECT_EQ(frontEnd.alerts.back().title, "Some items could not be removed.");
    EXPECT_EQ(frontEnd.alerts.back().text, "Items in subfolders cannot be removed individually.");
    waitForPreview();
    EXPECT_EQ(names().size(), 3U);

    frontEnd.expect("alert itemsNotRemoved");
    ASSERT_TRUE(dragging().writeRows(idsOf({"a", "inside"})));
    EXPECT_TRUE(dragging().deleteRowsIfAppropriate());
    EXPECT_TRUE(frontEnd.isScriptOver());
    waitForPreview();
    EXPECT_THAT(names(), ::testing::UnorderedElementsAre("folder", "inside"));

    ASSERT_TRUE(dragging().writeRows(idsOf({"folder"})));
    EXPECT_TRUE(dragging().deleteRowsIfAppropriate());
    waitForPreview();
    EXPECT_TRUE(names().empty());
    EXPECT_TRUE(std::filesystem::exists(paths.front())); // files are never touched
}

} // namespace

} // namespace tavrin::test
