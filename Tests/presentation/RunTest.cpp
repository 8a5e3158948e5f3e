#include "common/FailingFileSystem.h"
#include "engine/pipeline/RenameEngine.h"
#include "presentation/WindowColours.h"
#include "presentation/WindowFixture.h"
#include "presentation/cards/Card.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/run/RunClock.h"

#include <atomic>
#include <semaphore>

namespace tavrin::test {
namespace {

/// A disk on which a run waits at its renames, and fails at some.
class RunInList : public WindowFixture {
  protected:
    RunInList() {
        disk.before = [this](const FileEvent& event) {
            if (event.call != FileCall::rename)
                return 0;
            if (++renames == heldAt) {
                isHeld = true;
                gate.acquire();
            }
            return failing.contains(event.name) ? EACCES : 0;
        };
    }
    ~RunInList() override { gate.release(); }

    void startWithFiles(int count) {
        for (int i = 0; i < count; ++i)
            paths.push_back(makeFile("f" + std::to_string(i)));
        start(paths);
        chooseAction("Add to end");
        type("string", "X");
        waitForPreview();
        set("interactiveMode", 0);
    }
    RunOutcome outcomeOf(int row) {
        return static_cast<RunOutcome>(model().index(row, 0).data(PreviewTableModel::outcomeRole).toInt());
    }
    int rowsThatAre(RunOutcome outcome) {
        int count = 0;
        for (int row = 0; row < model().rowCount(); ++row)
            count += outcomeOf(row) == outcome ? 1 : 0;
        return count;
    }
    std::string reported() { return waitFor("runReport")->accessibleName().toStdString(); }

    FailingFileSystem disk;
    std::vector<std::string> paths;
    std::set<std::string> failing;
    int heldAt = 0;
    std::atomic<int> renames = 0;
    std::atomic<bool> isHeld = false;
    std::binary_semaphore gate{0};
};

TEST_F(RunInList, ShowsEachRowAndStopsBetweenTwoItems) {
    startWithFiles(2000);
    heldAt = 500;
    click("okButton");
    waitUntil("the run is in the middle", [this] { return isHeld.load(); });
    waitForText("runStatusText", "Nothing has failed so far.");
    EXPECT_EQ(rowsThatAre(RunOutcome::done), 499);
    EXPECT_EQ(rowsThatAre(RunOutcome::inHand), 1);
    EXPECT_TRUE(find("previewTableView")->isEnabled());
    EXPECT_FALSE(find("settingsPane")->isEnabled() || find("listBar")->isEnabled());
    // Nothing of the list can be changed, and it can be searched.
    find<QTableView>("previewTableView")->selectRow(3);
    QTest::keyClick(find("previewTableView"), Qt::Key_Delete);
    EXPECT_TRUE(command("findInList").isEnabled());
    QTest::qWait(550); // deaf at first
    QTest::keyClick(find("previewTableView"), Qt::Key_Escape);
    waitForText("stopButton", "Stopping…");
    gate.release();
    EXPECT_EQ(reported(), "500 file names were changed. Stopped: 1,500 items still have their old names.");
    waitForPreview();
    const Names left = filesOnDisk();
    EXPECT_EQ(std::ranges::count_if(left, [](const auto& name) { return name.ends_with('X'); }), 500);
    EXPECT_EQ(left.size(), 2000U);
    EXPECT_TRUE(find("undoRun")->isVisible() && find("finishRun")->isVisible());
    EXPECT_TRUE(find("settingsPane")->isEnabled());
    EXPECT_EQ(rowsThatAre(RunOutcome::done), 0) << "the rows are those of a new preview";
}

TEST_F(RunInList, KeepsTheReasonsOfAllFailuresUntilTheRowsChange) {
    failing = {"f1", "f3", "f4"};
    startWithFiles(6);
    click("okButton");
    // The first is told and ends the reports; all three count.
    waitFor("reportProblemWindow");
    click("confirmAll");
    EXPECT_EQ(reported(), "3 file names were changed. 3 items were not renamed.");
    waitForPreview();
    trigger("showNotRenamed");
    ASSERT_EQ(names(), (Names{"f1", "f3", "f4"}));
    const auto reason = [this] {
        return model().index(0, PreviewTableModel::newName).data(PreviewTableModel::reasonRole).toString();
    };
    EXPECT_FALSE(reason().isEmpty());
    EXPECT_EQ(rowsThatAre(RunOutcome::failed), 3);
    click("copyReasons");
    EXPECT_TRUE(QApplication::clipboard()->text().contains("/f3\n"));
    trigger("reloadPreview");
    waitForPreview();
    EXPECT_EQ(rowsThatAre(RunOutcome::failed), 3) << "read anew they are the same";
    type("string", "Y");
    waitForPreview();
    EXPECT_EQ(rowsThatAre(RunOutcome::failed), 0);
    failing.clear();
    click("okButton");
    EXPECT_EQ(reported(), "6 file names were changed.");
}

TEST_F(RunInList, KeepsItsCardWhenTheListIsEmptied) {
    startWithFiles(3);
    set("interactiveMode", 1);
    click("okButton");
    waitFor("confirmRenameWindow");
    controller().sourceCommands().clearList();
    waitUntil("the list is empty", [this] { return model().rowCount() == 0; });
    EXPECT_TRUE(find("confirmRenameWindow")->isVisible());
    EXPECT_TRUE(application->window().rect().contains(find("confirmRenameWindow")->geometry()));
    click("confirmStop");
    waitUntil("the run has ended", [this] { return controller().validateUserInterfaceItem(); });
    EXPECT_EQ(filesOnDisk(), (Names{"f0", "f1", "f2"}));
}

TEST_F(RunInList, StaysOpenWhenSoWishedAfterItWasClosedInARun) {
    startWithFiles(3);
    set("interactiveMode", 1);
    click("okButton");
    waitFor("confirmRenameWindow");
    click("confirmOne");
    waitUntil("the second question", [] { return Card::in(*findWidget("mainWindow")).front()->isAsking(); });
    application->window().close();
    waitFor("keepOpen");
    click("keepOpen");
    waitForPreview();
    EXPECT_EQ(names().size(), 3U);
    EXPECT_EQ(filesOnDisk(), (Names{"f0X", "f1", "f2"}));
    EXPECT_TRUE(find("settingsPane")->isEnabled());
}

TEST_F(RunInList, StopsByTheKeyThatQuits) {
    startWithFiles(3);
    heldAt = 2;
    click("okButton");
    waitUntil("the run is in the middle", [this] { return isHeld.load(); });
    QTest::keyClick(&application->window(), Qt::Key_Q, Qt::ControlModifier);
    waitForText("stopButton", "Stopping…");
    gate.release();
    waitFor("keepOpen");
    EXPECT_EQ(filesOnDisk(), (Names{"f0X", "f1X", "f2"}));
    click("keepOpen");
    waitForPreview();
}

TEST_F(RunInList, IsUndoneByTheKeyOfItsBar) {
    startWithFiles(3);
    click("okButton");
    EXPECT_EQ(reported(), "3 file names were changed.");
    QTest::keyClick(&application->window(), Qt::Key_U, Qt::AltModifier);
    waitForBar("3 file names are as before.");
    EXPECT_EQ(filesOnDisk(), (Names{"f0", "f1", "f2"}));
}

TEST_F(RunInList, MarksTheRowsOfAnUndoInListAndMap) {
    startWithFiles(300);
    click("okButton");
    EXPECT_EQ(reported(), "300 file names were changed.");
    waitForPreview();
    heldAt = renames + 200;
    click("undoRun");
    waitUntil("the undo is in the middle", [this] { return isHeld.load(); });
    QWidget* map = find("rowMap");
    waitUntil("two thirds of the map are done", [map] {
        const QImage image = map->grab().toImage();
        int doneLines = 0;
        for (int y = 0; y < image.height(); ++y)
            doneLines +=
                image.pixelColor(image.width() - 1, y) == WindowColours::of(map->palette()).addedText;
        return std::abs(doneLines - image.height() * 199 / 300) <= 2;
    });
    EXPECT_EQ(rowsThatAre(RunOutcome::done), 199);
    EXPECT_EQ(rowsThatAre(RunOutcome::inHand), 1);
    gate.release();
    waitForBar("300 file names are as before.");
    EXPECT_FALSE(find<QLabel>("previewProgressText")->text().contains("out of 300")) << "of what is over";
}

TEST_F(RunInList, AnOpenCardFollowsThePaletteLikeTheBarAfterIt) {
    failing = {"f1"};
    startWithFiles(3);
    click("okButton");
    const auto groundOf = [](const char* name) { return waitFor(name)->grab().toImage().pixelColor(9, 9); };
    const QPalette before = QApplication::palette();
    EXPECT_GT(groundOf("reportProblemWindow").lightness(), 150);
    QApplication::setPalette(WindowColours::palette(true));
    EXPECT_LT(groundOf("reportProblemWindow").lightness(), 90);
    click("confirmAll");
    EXPECT_LT(groundOf("runReport").lightness(), 90);
    QApplication::setPalette(before);
    EXPECT_GT(groundOf("runReport").lightness(), 150);
}

TEST_F(RunInList, AMapOfTheRowsLeadsToWhatIsFound) {
    startWithFiles(300);
    trigger("findInList");
    QTest::keyClicks(find("findField"), "f299");
    auto* view = find<QTableView>("previewTableView");
    const auto isThere = [&] { return model().rowAt(view->currentIndex().row()).name == u"f299"; };
    waitUntil("it is found", [&] { return view->currentIndex().isValid() && isThere(); });
    const int row = view->currentIndex().row();
    view->setCurrentIndex(model().index(0, PreviewTableModel::currentName));
    QWidget* map = find("rowMap");
    QTest::mouseClick(map, Qt::LeftButton, {}, {1, map->height() * (2 * row + 1) / 600});
    EXPECT_TRUE(isThere());
}

TEST_F(RunInList, ChipsLeaveAThirdOfTheirRowToTheStatusText) {
    startWithFiles(3);
    QTest::keyClick(find("previewTableView"), Qt::Key_Down);
    QTest::keyClick(find("previewTableView"), Qt::Key_Space);
    controller().previewControl().sortBy(PreviewColumn::newName);
    waitForPreview();
    const auto* text = find("statusText");
    std::set<std::pair<int, bool>> forms;
    for (const int width : {1180, 700, 620, 560}) {
        application->window().resize(width, 600);
        QTest::qWait(20);
        waitUntil("room for the text at " + std::to_string(width), [&] {
            return text->width() >= std::min(text->sizeHint().width(), find("statusRow")->width() / 3);
        });
        forms.emplace(find("sortingChip")->width(), find("moreChips")->isVisible());
    }
    EXPECT_GT(forms.size(), 1U);
}

TEST(RunClockTest, TellsRateAndTimeLeftAndGrowsLate) {
    const RunClock::Time begin{};
    using namespace std::chrono;
    RunClock clock;
    clock.start(begin);
    milliseconds now(0);
    const auto run = [&](milliseconds span, double perSecond, std::int32_t& done) {
        for (const auto end = now + span; now < end; now += 100ms) {
            done = static_cast<std::int32_t>(done + perSecond / 10);
            clock.tell(begin + now, done, 10000);
        }
    };
    std::int32_t done = 0;
    run(2900ms, 100, done);
    EXPECT_EQ(clock.text().toStdString(), "100 a second");
    run(200ms, 100, done);
    EXPECT_EQ(clock.text().toStdString(), "100 a second · about 2 min left");
    const auto left = *clock.timeLeft();
    run(3000ms, 10, done); // slower: not told at once
    EXPECT_LT(*clock.timeLeft(), left);
    run(3000ms, 10, done);
    EXPECT_GT(*clock.timeLeft(), left * 5);
    // A question takes no time.
    const auto before = *clock.timeLeft();
    clock.pause(begin + now);
    now += 1h;
    clock.goOn(begin + now);
    run(100ms, 10, done);
    EXPECT_NEAR(clock.timeLeft()->count(), before.count(), 2);
}

} // namespace
} // namespace tavrin::test
