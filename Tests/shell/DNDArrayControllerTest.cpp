#include "shell/DNDArrayController.h"

#include "ShellFixture.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "support/DebugLog.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace tavrin::test {

namespace {

using Indexes = DNDArrayController::Indexes;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

struct Lines final : LogSink {
    void write(std::string_view line) override { lines.emplace_back(line); }
    std::vector<std::string> lines;
};

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
    bool isAutomatic() { return controller().globalSettings().automaticSorting(); }

    std::vector<std::string> paths;
};

TEST_F(DNDArrayControllerTest, PutsDraggedRowsInFrontOfTheRowOfTheDrop) {
    struct Case {
        Indexes dragged;
        std::size_t row;
        std::vector<std::string> order;
    };
    const Case cases[] = {{{1, 2}, 4, {"a", "d", "b", "c"}}, {{3}, 0, {"d", "a", "b", "c"}},
                          {{0, 2}, 1, {"a", "c", "b", "d"}}, {{0}, 0, {"a", "b", "c", "d"}},
                          {{1}, 2, {"a", "b", "c", "d"}},    {{0, 1, 2, 3}, 2, {"a", "b", "c", "d"}},
                          {{0, 3}, 99, {"b", "c", "a", "d"}}};
    startWith({"a", "b", "c", "d"});
    for (const Case& each : cases) {
        SCOPED_TRACE(fmt::format("to {}: {}", each.row, each.order.front()));
        set("automaticSorting", true);
        waitForPreview();
        ASSERT_THAT(names(), ElementsAre("a", "b", "c", "d"));
        ASSERT_TRUE(dragging().writeRowsWithIndexes(each.dragged));
        dragging().acceptRows(each.row);
        EXPECT_THAT(names(), ElementsAreArray(each.order));
        EXPECT_FALSE(isAutomatic());
        // The end of the same drag removes nothing, and the next preview keeps the order.
        EXPECT_FALSE(dragging().deleteRowsIfAppropriate());
        waitForPreview();
        EXPECT_THAT(names(), ElementsAreArray(each.order));
    }
}

TEST_F(DNDArrayControllerTest, ReordersTheOrderOnShow) {
    startWith({"a", "b", "c", "d"});
    dragging().insertManualIndices({3}, 0);
    dragging().insertManualIndices({3}, 0);
    EXPECT_THAT(names(), ElementsAre("c", "d", "a", "b"));
    controller().previewControl().initiateDelayedPreviewUpdate();
    waitForPreview();
    EXPECT_THAT(names(), ElementsAre("c", "d", "a", "b"));
}

TEST_F(DNDArrayControllerTest, LogsTheOrderBeforeAndAfter) {
    startWith({"a", "b"});
    Lines log;
    LogSink* const former = setDebugLogSink(&log);
    setDebugLogIsOn(true);
    static_cast<void>(dragging().writeRowsWithIndexes({0}));
    dragging().acceptRows(2);
    setDebugLogIsOn(false);
    setDebugLogSink(former);
    log.lines.resize(std::min<std::size_t>(log.lines.size(), 6));
    EXPECT_THAT(log.lines, ElementsAre("internal drag", "index set: 0", "BEFORE Insertion:", "a (0)", "b (1)",
                                       "AFTER Insertion:"));
}

TEST_F(DNDArrayControllerTest, TakesRowsBetweenRowsAloneAndFilesAnywhere) {
    startWith({"a"});
    EXPECT_FALSE(dragging().writeRowsWithIndexes({}));
    EXPECT_TRUE(dragging().validateDrop(true, true));
    EXPECT_FALSE(dragging().validateDrop(true, false));
    EXPECT_TRUE(dragging().validateDrop(false, true));
    EXPECT_TRUE(dragging().validateDrop(false, false));
    frontEnd.expect("alert filesNotAdded");
    dragging().acceptFiles({files.write("b"), paths.front()});
    EXPECT_TRUE(frontEnd.isScriptOver());
    waitForPreview();
    EXPECT_THAT(names(), ElementsAre("a", "b"));
    EXPECT_TRUE(isAutomatic());
}

TEST_F(DNDArrayControllerTest, RemovesWhatIsDraggedOutAndSaysWhatStays) {
    startWith({"a", "folder/inside"});
    controller().clearPreview();
    set("processSubfolders", 1);
    set("processFolders", 1);
    controller().addFilePaths({paths.front(), files.path("folder")}, true);
    waitForPreview();
    ASSERT_THAT(names(), ::testing::UnorderedElementsAre("a", "folder", "inside"));
    const auto indexOf = [&](const std::string& name) {
        const std::vector<std::string> all = names();
        return static_cast<std::size_t>(std::ranges::find(all, name) - all.begin());
    };

    // Given up: nothing happens.
    ASSERT_TRUE(dragging().writeRowsWithIndexes({indexOf("a")}));
    dragging().cancelDrag();
    EXPECT_FALSE(dragging().deleteRowsIfAppropriate());

    frontEnd.expect("alert itemsNotRemoved");
    ASSERT_TRUE(dragging().writeRowsWithIndexes({indexOf("inside")}));
    EXPECT_FALSE(dragging().deleteRowsIfAppropriate());
    EXPECT_TRUE(frontEnd.isScriptOver());
    EXPECT_EQ(frontEnd.alerts.back().title, "Some items could not be removed.");
    EXPECT_EQ(frontEnd.alerts.back().text, "Items in subfolders cannot be removed individually.");
    waitForPreview();
    EXPECT_EQ(names().size(), 3U);

    frontEnd.expect("alert itemsNotRemoved");
    Indexes both{indexOf("a"), indexOf("inside")};
    std::ranges::sort(both);
    ASSERT_TRUE(dragging().writeRowsWithIndexes(both));
    EXPECT_TRUE(dragging().deleteRowsIfAppropriate());
    EXPECT_TRUE(frontEnd.isScriptOver());
    waitForPreview();
    EXPECT_THAT(names(), ::testing::UnorderedElementsAre("folder", "inside"));

    ASSERT_TRUE(dragging().writeRowsWithIndexes({indexOf("folder")}));
    EXPECT_TRUE(dragging().deleteRowsIfAppropriate());
    waitForPreview();
    EXPECT_TRUE(names().empty());
    EXPECT_TRUE(std::filesystem::exists(paths.front())); // files are never touched
}

} // namespace

} // namespace tavrin::test
