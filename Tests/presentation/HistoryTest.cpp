#include "engine/history/RunHistory.h"
#include "presentation/WindowFixture.h"
#include "presentation/cards/Card.h"

#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <unistd.h>

using namespace ::testing;

namespace tavrin::test {

namespace {

/// Undo and redo from the window, and the window of past runs.
class HistoryWindowTest : public WindowFixture {
  protected:
    /// Puts files on the list and gives them upper-case names.
    void renameToUpperCase(const Names& files) {
        std::vector<std::string> paths;
        for (const std::string& name : files)
            paths.push_back(makeFile(name));
        start(paths);
        set("interactiveMode", 0);
        set("showSummary", 0);
        chooseAction("Make uppercase");
        currentAction().setValue(0, "fragmentSelection");
        waitForPreview();
        trigger("ok");
        waitUntilIdle();
    }
    void waitUntilIdle() {
        waitUntil("end of the run", [this] {
            return !controller().renameEngine().isBusy() && controller().validateUserInterfaceItem();
        });
        waitForPreview();
    }
    QWidget& window() { return *find("mainWindow"); }
    [[nodiscard]] RunHistory history() {
        return RunHistory(controller().renameEngine().historyPlace().folder);
    }
    /// The history, once its items have been looked at.
    void openHistory() {
        trigger("showHistory");
        waitFor("historyWindow");
        waitForSummary("can be");
    }
    void waitForSummary(const QString& part) {
        waitUntil(part.toStdString(), [&] { return find<QLabel>("historySummary")->text().contains(part); });
    }
    /// Clicks a button of the card that is open, when it answers.
    void answer(const char* name) {
        waitUntil(name, [&] {
            const auto cards = Card::in(window());
            return !cards.empty() && !cards.front()->isDeaf();
        });
        QTest::mouseClick(Card::in(window()).front()->findChild<QPushButton*>(name), Qt::LeftButton);
    }
    QAbstractItemModel& items() { return *find<QTableView>("historyItems")->model(); }
    [[nodiscard]] QString item(int row, int column) { return items().index(row, column).data().toString(); }
};

TEST_F(HistoryWindowTest, TheMenuNamesWhatItWouldUndoAndBothWaysLeadBackToWhereTheyBegan) {
    renameToUpperCase({"a", "b"});
    EXPECT_THAT(filesOnDisk(), ElementsAre("A", "B"));
    const auto menu = [&](const char* name) {
        emit qobject_cast<QMenu*>(command(name).associatedObjects().last())->aboutToShow();
        return command(name).text();
    };
    EXPECT_THAT(menu("undoRename").toStdString(), StartsWith("Undo Rename (2 Names, “"));
    EXPECT_EQ(menu("redoRename"), "Redo Rename");
    EXPECT_FALSE(command("redoRename").isEnabled());
    trigger("undoRename");
    waitUntil("the old names", [this] { return filesOnDisk() == Names{"a", "b"}; });
    waitUntilIdle();
    EXPECT_EQ(names(), (Names{"a", "b"}));
    EXPECT_FALSE(window().findChild<QWidget*>("itemsWereGone"));
    EXPECT_THAT(menu("redoRename").toStdString(), StartsWith("Redo Rename (2 Names, “"));
    trigger("redoRename");
    waitUntil("the new names", [this] { return filesOnDisk() == Names{"A", "B"}; });
    waitUntilIdle();
}

TEST_F(HistoryWindowTest, WhatDoesNotAllComeBackIsAskedAboutAndShownInTheHistory) {
    renameToUpperCase({"a", "b", "c"});
    std::filesystem::remove(folder.path("B"));
    trigger("undoRename");
    waitFor("undoCard");
    EXPECT_THAT(filesOnDisk(), ElementsAre("A", "C"));
    answer("showHistory");
    waitFor("historyWindow");
    waitForSummary("2 of 3 names can be undone. 1 item is no longer as the run left it.");
    EXPECT_EQ(item(1, 1) + item(1, 2) + item(1, 3), "bBnot found");
    QTest::keyClick(find("historyRuns"), Qt::Key_Return);
    waitFor("undoCard");
    answer("undoRun");
    waitUntil("the old names", [this] { return filesOnDisk() == Names{"a", "c"}; });
    waitUntilIdle();
    EXPECT_EQ(history().runs().front().heading.what, RunKind::undo);
}

TEST_F(HistoryWindowTest, ShowsItemsSortedAndFilteredCopiesThemAndForgets) {
    renameToUpperCase({"b", "a2", "a1"});
    openHistory();
    EXPECT_EQ(items().rowCount(), 3);
    auto* table = find<QTableView>("historyItems");
    emit table->horizontalHeader()->sectionClicked(1);
    waitUntil("order", [this] { return item(0, 1) == "a1" && item(1, 1) == "a2" && item(2, 1) == "b"; });
    QTest::keyClicks(table, "2");
    waitUntil("filter", [this] { return items().rowCount() == 1; });
    EXPECT_EQ(find<QLineEdit>("historyFilter")->text(), "2");
    QApplication::clipboard()->clear();
    click("copyRun");
    waitUntil("copy", [] { return QApplication::clipboard()->text() == "a2\tA2\thas the new name\n"; });
    // What happens beside it shows when the window becomes active again.
    std::ofstream(folder.path("other")) << "other";
    std::filesystem::rename(folder.path("other"), folder.path("A2"));
    QEvent active(QEvent::ActivationChange);
    QApplication::sendEvent(find("historyWindow"), &active);
    waitUntil("look", [this] { return item(0, 3) == "another file has this name"; });
    QTest::keyClick(find("historyRuns"), Qt::Key_Delete);
    waitUntil("forgotten", [this] { return history().runs().empty(); });
    waitFor("historyEmpty");
}

TEST_F(HistoryWindowTest, FindsNamesOfAllRunsAndShowsTheRunOfAHitWithItsLikes) {
    renameToUpperCase({"pear", "plum", "fig"});
    trigger("undoRename");
    waitUntil("the old names", [this] { return filesOnDisk() == Names{"fig", "pear", "plum"}; });
    waitUntilIdle();
    openHistory();
    auto* field = find<QLineEdit>("historyFind");
    QTest::keyClicks(field, "P");
    const auto isSaid = [this](const char* text) { return find<QLabel>("historyHitCount")->text() == text; };
    waitUntil("both runs", [&] { return isSaid("4 names found"); });
    QTest::keyClick(field, Qt::Key_Down);
    auto* hits = find<QListView>("historyHits");
    for (int line = 0; line < 3; ++line) // past the head of the older run
        QTest::keyClick(hits, Qt::Key_Down);
    EXPECT_EQ(hits->currentIndex().data(), "plum, renamed to PLUM");
    QTest::keyClick(hits, Qt::Key_Return);
    waitUntil("the older run",
              [this] { return items().rowCount() == 2 && item(1, 3) == "has the old name"; });
    EXPECT_EQ(find<QLineEdit>("historyFilter")->text(), "P");
    EXPECT_EQ(find<QTableView>("historyItems")->currentIndex().siblingAtColumn(2).data(), "PLUM");
    QTest::keyClicks(field, "x");
    waitUntil("nothing", [&] { return isSaid("No run has this name."); });
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_TRUE(find("historyRuns")->isVisible());
    EXPECT_TRUE(find("historyWindow")->isVisible());
}

TEST_F(HistoryWindowTest, TellsAtTheStartOfARunThatWasCutOffAndFinishesItAndShowsAnotherProcessRunning) {
    renameToUpperCase({"a", "b"});
    const std::string record = history().runs().front().path;
    std::string text;
    std::getline(std::ifstream(record), text, '\0');
    std::ofstream(record, std::ios::trunc) << text.substr(0, text.rfind("done\t"));
    std::filesystem::rename(folder.path("B"), folder.path("b"));
    start();
    waitFor("interruptedRunBar");
    {
        // Another process holds the record for as long as its run is under way.
        const int held = ::open(record.c_str(), O_RDWR);
        ASSERT_EQ(::flock(held, LOCK_EX), 0);
        trigger("showHistory");
        waitFor("historyWindow");
        waitForSummary("still under way");
        EXPECT_EQ(findWidget("finishRun"), find("interruptedRunBar")->findChild<QWidget*>("finishRun"));
        ::close(held);
    }
    find("historyWindow")->close();
    QTest::mouseClick(find("interruptedRunBar")->findChild<QAbstractButton*>("finishRun"), Qt::LeftButton);
    answer("finishRun");
    waitUntil("the new names", [this] { return filesOnDisk() == Names{"A", "B"}; });
    waitUntilIdle();
    waitUntilGone("interruptedRunBar");
}

} // namespace

} // namespace tavrin::test
