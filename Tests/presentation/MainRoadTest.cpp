#include "actions/CompositeRenameAction.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowFixture.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/PreviewTableModel.h"
#include "presentation/preview/PreviewTableView.h"
#include "presentation/steps/StepsModel.h"
#include "shell/MainController.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDialog>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMimeData>
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

    void waitForSheet(const char* name) {
        waitUntil(name, [name] {
            const QWidget* sheet = findWidget(name);
            return sheet && sheet->isVisible();
        });
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
    waitForNames({"Trip 01.txt", "Trip 02.txt", "Trip 03.txt"});
    EXPECT_EQ(find<QPushButton>("okButton")->text(), "&Rename 3 Items");
    EXPECT_EQ(find<QLabel>("statusText")->text(), "3 out of 3 items need renaming.");
    setSetting("interactiveMode", 0);
    click("okButton");
    waitUntil("the files are renamed", [this] { return filesOnDisk().front() == "Trip 01.txt"; });
    EXPECT_EQ(filesOnDisk(), (std::vector<std::string>{"Trip 01.txt", "Trip 02.txt", "Trip 03.txt"}));
    waitForEndOfRun();
}

TEST_F(MainRoad, AsksAndObeysEachAnswer) {
    struct Case {
        std::vector<const char*> answers;
        std::vector<std::string> names;
    };
    const Case cases[] = {
        {{"confirmStop"}, {"a.txt", "b.txt", "c.txt"}},
        {{"confirmOne", "confirmStop"}, {"Image_01.txt", "b.txt", "c.txt"}},
        {{"leaveOut", "confirmAll"}, {"Image_02.txt", "Image_03.txt", "a.txt"}},
        {{"confirmAll"}, {"Image_01.txt", "Image_02.txt", "Image_03.txt"}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.answers.front());
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            std::filesystem::remove(entry.path());
        startWithThreeFiles();
        setSetting("interactiveMode", 1);
        click("okButton");
        for (const char* answer : each.answers) {
            waitForSheet("confirmRenameWindow");
            click(answer);
            waitUntil("the sheet is gone", [answer] {
                const QWidget* button = findWidget(answer);
                return !button || !button->isVisible();
            });
        }
        waitForEndOfRun();
        EXPECT_EQ(filesOnDisk(), each.names);
        application.reset();
    }
}

TEST_F(MainRoad, EndsInOrderWhenTheWindowIsClosedOnAQuestion) {
    startWithThreeFiles();
    setSetting("interactiveMode", 1);
    click("okButton");
    waitForSheet("confirmRenameWindow");
    application->window().close();
    application.reset(); // the worker is freed, or this never returns
    EXPECT_EQ(filesOnDisk(), (std::vector<std::string>{"a.txt", "b.txt", "c.txt"}));
}

TEST_F(MainRoad, TellsAllFailuresAtTheEnd) {
    startWithThreeFiles();
    setSetting("interactiveMode", 0);
    std::filesystem::remove(folder.path() + "/b.txt");
    click("okButton");
    waitUntil("something is told",
              [] { return findWidget("errorWindow") || findWidget("reportProblemWindow"); });
    if (findWidget("reportProblemWindow"))
        click("confirmAll");
    waitForSheet("errorWindow");
    EXPECT_EQ(find<QListWidget>("errorList")->count(), 1);
    EXPECT_TRUE(find<QListWidget>("errorList")->item(0)->text().contains("b.txt"));
    find<QDialog>("errorWindow")->accept();
    waitForEndOfRun();
    EXPECT_EQ(filesOnDisk(), (std::vector<std::string>{"Image_01.txt", "Image_03.txt"}));
}

TEST_F(MainRoad, ShowsTheLastOfABurstOfChanges) {
    std::vector<std::string> paths;
    for (int i = 0; i < 300; ++i)
        paths.push_back(makeFile("file " + std::to_string(i) + ".txt"));
    start(paths);
    for (const char* text : {"a", "ab", "abc", "abcd", "abcde"})
        type("prefix", text);
    waitUntil("the last name shows", [this] { return newNames().front() == "abcde01.txt"; });
}

TEST_F(MainRoad, OrdersRowsByHand) {
    startWithThreeFiles();
    auto* view = find<PreviewTableView>("previewTableView");
    view->selectRow(2);
    QTest::keyClick(view, Qt::Key_Up, Qt::AltModifier);
    waitUntil("the notice of the manual order", [] { return findWidget("alert") != nullptr; });
    find<QDialog>("alert")->accept();
    waitUntil("c has the second number", [this] {
        return model().rowCount() == 3 && model().rowAt(1).name == u"c.txt" &&
               model().rowAt(1).finalName == u"Image_02.txt";
    });
    EXPECT_EQ(view->selectedRows(), (DNDArrayController::Indexes{1}));
    EXPECT_FALSE(application->controller().globalSettings().automaticSorting());
}

TEST_F(MainRoad, RemovesRowsFromTheListAlone) {
    startWithThreeFiles();
    auto* view = find<PreviewTableView>("previewTableView");
    view->selectRow(0);
    QTest::keyClick(view, Qt::Key_Delete);
    waitForNames({"Image_01.txt", "Image_02.txt"});
    EXPECT_EQ(filesOnDisk().size(), 3U);
}

TEST_F(MainRoad, TakesDroppedFilesWithAnyName) {
    start();
    const std::string odd = makeFile("caf\xE9 50%.txt");
    QMimeData content;
    QByteArray address = "file://" + QByteArray::fromStdString(odd).toPercentEncoding("/") + "\r\n";
    content.setData("text/uri-list", address);
    QDropEvent drop({50, 50}, Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(find<PreviewTableView>("previewTableView")->viewport(), &drop);
    waitForNames({"Image_01.txt"});
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

TEST_F(MainRoad, KeepsTheRecipeForTheNextStart) {
    start();
    chooseAction("Replace text");
    type("searchTerm", "needle");
    restart();
    EXPECT_EQ(currentAction().actionName(), "Replace text");
    EXPECT_EQ(find<QLineEdit>("searchTerm")->text(), "needle");
}

} // namespace

} // namespace tavrin::test
