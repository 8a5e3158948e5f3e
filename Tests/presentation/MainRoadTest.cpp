#include "actions/CompositeRenameAction.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowFixture.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/PreviewTableModel.h"
#include "presentation/preview/PreviewTableView.h"
#include "presentation/steps/StepsModel.h"
#include "shell/MainController.h"
#include "support/text/Text.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDialog>
#include <QDropEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <filesystem>

namespace tavrin::test {

namespace {

class MainRoad : public WindowFixture {
  protected:
    void startWithThreeFiles() {
        start({makeFile("a.txt"), makeFile("b.txt"), makeFile("c.txt")});
        waitForNames({"Image_01.txt", "Image_02.txt", "Image_03.txt"});
    }

    void setSetting(const char* key, int value) {
        application->controller().globalSettings().setValue(value, key);
    }

    /// Whether the list takes it.
    bool drop(const char* type, const QByteArray& bytes) {
        QMimeData content;
        content.setData(type, bytes);
        QWidget* target = find<PreviewTableView>("previewTableView")->viewport();
        QDragEnterEvent enter({50, 50}, Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QDropEvent event({50, 50}, Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QApplication::sendEvent(target, &event);
        return event.isAccepted();
    }

    void waitForEndOfRun() {
        waitUntil("the run has ended", [this] {
            return application->controller().validateUserInterfaceItem() &&
                   !application->controller().renameEngine().isBusy();
        });
    }
};

TEST_F(MainRoad, LeadsFromFilesToNewNames) {
    startWithThreeFiles();
    const QAbstractItemModelTester tester(&model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_TRUE(find("previewTableView")->isVisible());
    type("prefix", "Trip ");
    // Nothing is counted while the list is out of date.
    EXPECT_EQ(find<QPushButton>("okButton")->text().toStdString(), "&Rename");
    waitForNames({"Trip 01.txt", "Trip 02.txt", "Trip 03.txt"});
    waitUntil("the button counts",
              [this] { return find<QPushButton>("okButton")->text() == "&Rename 3 Items"; });
    waitUntil("the status line counts",
              [this] { return find<QLabel>("statusText")->text() == "3 out of 3 items need renaming."; });
    setSetting("interactiveMode", 0);
    click("okButton");
    auto* summary = waitFor<QMessageBox>("alert");
    EXPECT_EQ(summary->text().toStdString(), "3 file names were changed.");
    EXPECT_EQ(filesOnDisk(), (std::vector<std::string>{"Trip 01.txt", "Trip 02.txt", "Trip 03.txt"}));
    summary->accept();
    waitForEndOfRun();
    // What was renamed stays in the list under its new name; nothing is left to do.
    waitUntil("the list is anew", [this] {
        return model().rowCount() == 3 && model().rowAt(0).name == u"Trip 01.txt" &&
               find<QLabel>("statusText")->text() == "0 out of 3 items need renaming.";
    });
    EXPECT_EQ(find<QPushButton>("okButton")->text().toStdString(), "&Rename");
}

// A key that is held down, or struck twice, answers no more than one question.
TEST_F(MainRoad, IsDeafToKeysForAMomentAfterAQuestionHasOpened) {
    startWithThreeFiles();
    setSetting("interactiveMode", 1);
    click("okButton");
    auto* sheet = waitFor("confirmRenameWindow");
    QTest::keyClick(sheet, Qt::Key_Return);
    QTest::keyClick(sheet, Qt::Key_Escape);
    EXPECT_TRUE(sheet->isVisible());
    const QPointer<QWidget> first(sheet);
    waitUntil("a key is heard", [&] {
        QTest::keyClick(first, Qt::Key_Return);
        return !first || !first->isVisible();
    });
    waitUntil("the next question", [&] {
        const QWidget* next = findWidget("confirmRenameWindow");
        return next && next != first && next->isVisible();
    });
    EXPECT_EQ(filesOnDisk(), (std::vector<std::string>{"Image_01.txt", "b.txt", "c.txt"}));
    click("confirmStop");
    waitForEndOfRun();
}

TEST_F(MainRoad, TellsFailuresAtOnceAndAllOthersAtTheEnd) {
    startWithThreeFiles();
    setSetting("interactiveMode", 0);
    std::filesystem::remove(folder.path("a.txt"));
    std::filesystem::remove(folder.path("c.txt"));
    click("okButton");
    waitFor("reportProblemWindow");
    click("confirmAll");
    waitFor("errorWindow");
    auto* list = find<QListWidget>("errorList");
    ASSERT_EQ(list->count(), 1); // the one that was told at once is not told again
    EXPECT_TRUE(list->item(0)->text().contains("c.txt"));
    EXPECT_TRUE(find<QLabel>("errorHead")->text().endsWith("1 file name was changed."));
    EXPECT_FALSE(find<QPlainTextEdit>("errorMessage")->toPlainText().isEmpty());
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().endsWith("c.txt\n"));
    find<QDialog>("errorWindow")->accept();
    waitForEndOfRun();
    EXPECT_EQ(filesOnDisk(), (std::vector<std::string>{"Image_02.txt"}));
}

// Each stroke falls into a preview that is under way.
TEST_F(MainRoad, ShowsTheLastOfABurstOfChanges) {
    std::vector<std::string> paths;
    for (int i = 0; i < 300; ++i)
        paths.push_back(makeFile("file " + std::to_string(i) + ".txt"));
    start(paths);
    auto& controller = application->controller();
    std::string typed;
    for (int stroke = 0; stroke < 20; ++stroke) {
        typed += static_cast<char>('a' + stroke);
        QTest::keyClick(find("prefix"), static_cast<char>('a' + stroke));
        controller.previewControl().firePendingPreview();
        EXPECT_TRUE(controller.renameEngine().isBusy());
    }
    waitUntil("the last name shows",
              [&] { return newNames().front().ends_with(typed + "01.txt") && newNames().size() == 300; });
    waitUntil("the engine rests", [&] { return !controller.renameEngine().isBusy(); });
    EXPECT_TRUE(newNames().back().ends_with(typed + "300.txt"));
}

// What is on show may be a part of the list: what is done to a row hits that row, and no other.
TEST_F(MainRoad, MovesAndRemovesTheRowsOfAFilteredList) {
    start({makeFile("a"), makeFile("bK"), makeFile("c"), makeFile("dK"), makeFile("e")});
    UserDefaults::sharedInstance().setObject("showManualSortingAlert", false);
    chooseAction("Replace text");
    type("searchTerm", "K");
    type("replacementTerm", "L");
    waitForNames({"a", "bL", "c", "dL", "e"});
    auto* view = find<PreviewTableView>("previewTableView");
    const auto names = [this] {
        std::vector<std::string> result;
        for (int row = 0; row < model().rowCount(); ++row)
            result.push_back(text::toUtf8(model().rowAt(row).name));
        return result;
    };
    application->window().previewPane().setShow(PreviewPane::Show::toBeRenamed);
    ASSERT_EQ(names(), (std::vector<std::string>{"bK", "dK"}));
    view->selectRow(1);
    QTest::keyClick(view, Qt::Key_Up, Qt::AltModifier);
    waitUntil("the order is turned", [&] { return names() == std::vector<std::string>{"dK", "bK"}; });
    application->window().previewPane().setShow(PreviewPane::Show::all);
    EXPECT_EQ(names(), (std::vector<std::string>{"a", "dK", "bK", "c", "e"}));
    application->window().previewPane().setShow(PreviewPane::Show::toBeRenamed);
    view->selectRow(0);
    auto& dragging = application->controller().dndArrayController();
    ASSERT_TRUE(dragging.writeRows(view->selectedIds()));
    EXPECT_TRUE(dragging.deleteRowsIfAppropriate());
    application->window().previewPane().setShow(PreviewPane::Show::all);
    waitUntil("the row is gone", [&] { return names() == std::vector<std::string>{"a", "bK", "c", "e"}; });
    view->selectRow(0);
    QTest::keyClick(view, Qt::Key_Delete);
    waitUntil("it is gone too", [&] { return names() == std::vector<std::string>{"bK", "c", "e"}; });
    EXPECT_EQ(filesOnDisk().size(), 5U);
}

TEST_F(MainRoad, TakesDroppedFilesWithAnyName) {
    start();
    const char* const names[] = {"caf\xE9 50%.txt", "two\nlines.txt", "\u202Egnp.txt", "#?.txt"};
    QByteArray addresses = "# a note\r\n";
    for (const char* name : names)
        addresses += "file://" + QByteArray::fromStdString(makeFile(name)).toPercentEncoding("/") + "\r\n";
    drop("text/uri-list", addresses);
    waitForNames({"Image_01.txt", "Image_02.txt", "Image_03.txt", "Image_04.txt"});
    for (int row = 0; row < model().rowCount(); ++row) {
        const QString shown = model().index(row, PreviewTableModel::currentName).data().toString();
        EXPECT_FALSE(shown.contains('\n') || shown.contains(QChar(0x202E)));
    }
    setSetting("interactiveMode", 1);
    click("okButton");
    waitFor("confirmRenameWindow");
    for (const QLabel* label : find("confirmRenameWindow")->findChildren<QLabel*>())
        EXPECT_FALSE(label->text().contains('\n') || label->text().contains(QChar(0x202E)));
    click("confirmAll");
    waitForEndOfRun();
    EXPECT_EQ(filesOnDisk(),
              (std::vector<std::string>{"Image_01.txt", "Image_02.txt", "Image_03.txt", "Image_04.txt"}));
}

TEST_F(MainRoad, TakesNothingThatIsNoFile) {
    start();
    const std::pair<const char*, QByteArray> contents[] = {
        {"text/plain", "hello"},
        {"text/uri-list", "https://example.org/a.txt\r\nfile:\r\nfile://\r\nfile:relative\r\n%00\r\n"},
        {"text/uri-list", ""}};
    for (const auto& [type, content] : contents) {
        SCOPED_TRACE(content.toStdString());
        EXPECT_FALSE(drop(type, content));
        waitForPreview();
        EXPECT_EQ(model().rowCount(), 0);
        EXPECT_EQ(findWidget("alert"), nullptr);
    }
    // A file that is gone when it arrives is told.
    EXPECT_TRUE(drop("text/uri-list", "file:///nowhere/a.txt\r\n"));
    EXPECT_EQ(waitFor<QMessageBox>("alert")->text().toStdString(), "Some files could not be added.");
}

TEST_F(MainRoad, ForeseesWhatWillFail) {
    start({makeFile("a.txt"), makeFile("b.txt")});
    makeFile("taken.txt");
    chooseAction("Replace text");
    type("searchTerm", "a");
    type("replacementTerm", "taken");
    waitUntil("the problem shows", [this] { return model().problems().size() == 1; });
    EXPECT_EQ(model().index(0, PreviewTableModel::newName).data(PreviewTableModel::reasonRole).toString(),
              "taken by a file not in the list");
    EXPECT_TRUE(find("problemBar")->isVisible());
    click("showOnlyProblems");
    EXPECT_EQ(model().rowCount(), 1);
    application->window().previewPane().setShow(PreviewPane::Show::all);
    type("replacementTerm", "c");
    waitUntil("the problem is gone", [this] { return model().problems().empty(); });
    EXPECT_FALSE(find("problemBar")->isVisible());
}

TEST_F(MainRoad, SaysHowManyNamesWereMadeDistinct) {
    start({makeFile("a1.txt"), makeFile("a2.txt"), makeFile("a3.txt")});
    chooseAction("Replace text");
    type("searchTerm", "1");
    type("replacementTerm", "2");
    waitForPreview();
    waitUntil("the bar tells", [this] {
        return find("problemBar")->isVisible() &&
               find<QLabel>("problemText")->text() ==
                   "2 names were made distinct: they would have been the same.";
    });
    EXPECT_FALSE(find("showOnlyProblems")->isVisible());
    type("replacementTerm", "4");
    waitUntil("the bar is gone", [this] { return !find("problemBar")->isVisible(); });
}

TEST_F(MainRoad, TurnsTheOrderByAClickOnTheNames) {
    start({makeFile("a2.txt"), makeFile("a10.txt"), makeFile("b.txt")});
    QHeaderView& header = *find<PreviewTableView>("previewTableView")->horizontalHeader();
    const auto isOrder = [this](const std::vector<std::u16string>& names) {
        for (std::size_t i = 0; i < names.size(); ++i)
            if (model().rowCount() != 3 || model().rowAt(static_cast<int>(i)).name != names[i])
                return false;
        return true;
    };
    for (const char* action : {"Make uppercase", "Add number to end"}) {
        SCOPED_TRACE(action);
        chooseAction(action);
        waitForPreview();
        const QPoint place(header.sectionViewportPosition(PreviewTableModel::currentName) + 30,
                           header.height() / 2);
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, place);
        waitUntil("the order is turned", [&] { return isOrder({u"b.txt", u"a10.txt", u"a2.txt"}); });
        QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, place);
        waitUntil("the order is natural", [&] { return isOrder({u"a2.txt", u"a10.txt", u"b.txt"}); });
    }
}

TEST_F(MainRoad, BuildsAChainOfSteps) {
    startWithThreeFiles();
    auto* steps = find<QListView>("stepsView");
    const QAbstractItemModelTester tester(steps->model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    click("addStepButton");
    ASSERT_EQ(steps->model()->rowCount(), 2);
    EXPECT_TRUE(steps->isVisible());
    chooseAction("Make uppercase");
    waitForNames({"IMAGE_01.txt", "IMAGE_02.txt", "IMAGE_03.txt"});
    // Unticked, the step rests.
    steps->setFocus();
    QTest::keyClick(steps, Qt::Key_Space);
    waitForNames({"Image_01.txt", "Image_02.txt", "Image_03.txt"});
    application->controller().actionListCommands().moveAction(1, 0);
    EXPECT_EQ(application->controller().compositeAction().actionAtIndex(0).actionName(), "Make uppercase");
    EXPECT_EQ(steps->currentIndex().row(), 0);
    click("removeStep");
    EXPECT_EQ(steps->model()->rowCount(), 1);
    EXPECT_EQ(currentAction().actionName(), "Produce numbered list");
}

TEST_F(MainRoad, TurnsButtonsOnWithTheirCommands) {
    const char* const buttons[][2] = {{"removeButton", "removeFile"},
                                      {"createFileListButton", "createFileList"},
                                      {"okButton", "ok"},
                                      {"removeStep", "removeAction"},
                                      {"moveStepUp", "nudgeActionUp"}};
    const auto areOn = [&] {
        std::string result;
        for (const auto& [button, name] : buttons) {
            EXPECT_EQ(find(button)->isEnabled(), command(name).isEnabled()) << button;
            result += command(name).isEnabled() ? '1' : '0';
        }
        return result;
    };
    start();
    EXPECT_EQ(areOn(), "00000");
    click("addStepButton");
    EXPECT_EQ(areOn(), "00011");
    application->open({makeFile("a.txt")});
    waitUntil("the list has a row", [this] { return model().rowCount() == 1; });
    waitForPreview();
    EXPECT_EQ(areOn(), "01111");
    find<PreviewTableView>("previewTableView")->selectRow(0);
    EXPECT_EQ(areOn(), "11111");
}

} // namespace

} // namespace tavrin::test
