#include "common/Recipes.h"
#include "presentation/WindowFixture.h"
#include "presentation/cards/Card.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/PreviewTableView.h"
#include "presentation/steps/StepsModel.h"

#include <csignal>

namespace tavrin::test {
namespace {

class MainRoad : public WindowFixture {
  protected:
    void startWithThreeFiles() {
        start({makeFile("a.txt"), makeFile("b.txt"), makeFile("c.txt")});
        waitForNames({"Image_01.txt", "Image_02.txt", "Image_03.txt"});
    }

    void replace(const char* term, const char* replacement) {
        if (currentAction().actionName() != "Replace text")
            chooseAction("Replace text");
        type("searchTerm", term);
        type("replacementTerm", replacement);
    }

    void show(PreviewPane::Show rows) { application->window().previewPane().setShow(rows); }

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
            return controller().validateUserInterfaceItem() && !controller().renameEngine().isBusy();
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
    const Names trips{"Trip 01.txt", "Trip 02.txt", "Trip 03.txt"};
    waitForNames(trips);
    waitForText("okButton", "&Rename 3 Items");
    waitForText("statusText", "3 out of 3 items need renaming.");
    set("interactiveMode", 0);
    click("okButton");
    EXPECT_EQ(waitFor("runReport")->accessibleName().toStdString(), "3 file names were changed.");
    EXPECT_EQ(filesOnDisk(), trips);
    waitForEndOfRun();
    // What was renamed stays in the list under its new name; nothing is left to do.
    waitForText("statusText", "0 out of 3 items need renaming.");
    EXPECT_EQ(names(), trips);
    EXPECT_EQ(find<QPushButton>("okButton")->text().toStdString(), "&Rename");
}

// A key that is held down, or struck twice, answers no more than one question.
TEST_F(MainRoad, IsDeafToKeysForAMomentAfterAQuestionHasOpened) {
    startWithThreeFiles();
    set("interactiveMode", 1);
    click("okButton");
    const QPointer<QWidget> card(waitFor("confirmRenameWindow"));
    const auto strike = [](Qt::Key key, bool isHeld) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, "\r", isHeld);
        QApplication::sendEvent(QApplication::focusWidget(), &press);
    };
    const auto description = [&] { return card->accessibleDescription(); };
    const QString first = description();
    strike(Qt::Key_Return, false);
    strike(Qt::Key_Escape, false);
    waitUntil("it listens", [&] { return !qobject_cast<Card*>(card)->isDeaf(); });
    strike(Qt::Key_Return, true);
    EXPECT_EQ(description(), first);
    strike(Qt::Key_Return, false);
    waitUntil("the next question", [&] { return description() != first; });
    strike(Qt::Key_Return, true);
    strike(Qt::Key_Return, false);
    EXPECT_EQ(filesOnDisk(), (Names{"Image_01.txt", "b.txt", "c.txt"}));
    // Tab stays in the card.
    for (int i = 0; i < 9; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_TRUE(card->isAncestorOf(QApplication::focusWidget()));
    }
    click("confirmStop");
    waitForEndOfRun();
    EXPECT_EQ(filesOnDisk().size(), 3U);
}

// What is on show may be a part of the list: what is done to a row hits that row, and no other.
TEST_F(MainRoad, MovesAndRemovesTheRowsOfAFilteredList) {
    start({makeFile("a"), makeFile("bK"), makeFile("c"), makeFile("dK"), makeFile("e")});
    UserDefaults::sharedInstance().setObject("showManualSortingAlert", false);
    replace("K", "L");
    waitForNames({"a", "bL", "c", "dL", "e"});
    auto* view = find<PreviewTableView>("previewTableView");
    show(PreviewPane::Show::toBeRenamed);
    ASSERT_EQ(names(), (Names{"bK", "dK"}));
    view->selectRow(1);
    QTest::keyClick(view, Qt::Key_Up, Qt::AltModifier);
    waitUntil("the order is turned", [&] { return names() == Names{"dK", "bK"}; });
    show(PreviewPane::Show::all);
    EXPECT_EQ(names(), (Names{"a", "dK", "bK", "c", "e"}));
    show(PreviewPane::Show::toBeRenamed);
    view->selectRow(0);
    QTest::keyClick(view, Qt::Key_Delete);
    show(PreviewPane::Show::all);
    waitUntil("the row is gone", [&] { return names() == Names{"a", "bK", "c", "e"}; });
    EXPECT_EQ(filesOnDisk().size(), 5U);
}

TEST_F(MainRoad, TakesDroppedFilesWithAnyNameAndNothingElse) {
    start();
    const std::pair<const char*, QByteArray> contents[] = {
        {"text/plain", "hello"},
        {"text/uri-list", "https://example.org/a.txt\r\nfile:\r\nfile://\r\nfile:relative\r\n%00\r\n"},
        {"text/uri-list", ""}};
    for (const auto& [type, content] : contents) {
        EXPECT_FALSE(drop(type, content));
        waitForPreview();
        EXPECT_EQ(model().rowCount(), 0) << content.toStdString();
        EXPECT_EQ(findWidget("alert"), nullptr);
    }
    EXPECT_TRUE(drop("text/uri-list", "file:///nowhere/a.txt\r\n"));
    waitForBar("Some files could not be added.");

    QByteArray addresses = "# a note\r\n";
    for (const char* name : {"caf\xE9 50%.txt", "two\nlines.txt", "\u202Egnp.txt", "#?.txt"})
        addresses += "file://" + QByteArray::fromStdString(makeFile(name)).toPercentEncoding("/") + "\r\n";
    drop("text/uri-list", addresses);
    const Names images{"Image_01.txt", "Image_02.txt", "Image_03.txt", "Image_04.txt"};
    waitForNames(images);
    const auto isSafe = [](const QString& text) {
        return !text.contains('\n') && !text.contains(QChar(0x202E));
    };
    for (int row = 0; row < model().rowCount(); ++row)
        EXPECT_TRUE(isSafe(model().index(row, PreviewTableModel::currentName).data().toString()));
    set("interactiveMode", 1);
    click("okButton");
    for (const QLabel* label : waitFor("confirmRenameWindow")->findChildren<QLabel*>())
        EXPECT_TRUE(isSafe(label->text()));
    click("confirmAll");
    waitForEndOfRun();
    EXPECT_EQ(filesOnDisk(), images);
}

TEST_F(MainRoad, ForeseesWhatWillFailAndSaysWhatWasMadeDistinct) {
    start({makeFile("a1.txt"), makeFile("a2.txt"), makeFile("a3.txt")});
    folder.write("taken.txt");
    replace("a1", "taken");
    waitUntil("the problem shows", [this] { return model().problems().size() == 1; });
    EXPECT_EQ(model().index(0, PreviewTableModel::newName).data(PreviewTableModel::reasonRole).toString(),
              "taken by a file not in the list");
    const auto told = [this] { return find("problemBar")->accessibleName().toStdString(); };
    EXPECT_EQ(told(), "1 item cannot be renamed as shown. Next: a1.txt, taken by a file not in the list.");
    click("nextProblemButton");
    EXPECT_EQ(told(), "1 item cannot be renamed as shown. This one: taken by a file not in the list.");
    click("showOnlyProblems");
    EXPECT_EQ(model().rowCount(), 1);
    EXPECT_FALSE(find<QTableView>("previewTableView")->isColumnHidden(PreviewTableModel::problem));
    show(PreviewPane::Show::all);
    replace("1", "2");
    waitUntil("two are made distinct",
              [&] { return told() == "2 names were made distinct: they would have been the same."; });
    EXPECT_TRUE(model().problems().empty());
    click("showOnlyDistinct");
    waitUntil("these alone show", [this] { return model().rowCount() == 2; });
    replace("1", "4");
    waitUntilGone("problemBar");
    waitUntil("all show again", [this] { return model().rowCount() == 3; });
}

TEST_F(MainRoad, TurnsTheOrderByAClickOnTheNames) {
    start({makeFile("a2.txt"), makeFile("a10.txt"), makeFile("b.txt")});
    const Names turned{"b.txt", "a10.txt", "a2.txt"};
    const Names natural{"a2.txt", "a10.txt", "b.txt"};
    QHeaderView& header = *find<PreviewTableView>("previewTableView")->horizontalHeader();
    for (const char* action : {"Make uppercase", "Add number to end"}) {
        SCOPED_TRACE(action);
        chooseAction(action);
        waitForPreview();
        const QPoint place(header.sectionViewportPosition(PreviewTableModel::currentName) + 30,
                           header.height() / 2);
        for (const auto& order : {turned, natural}) {
            QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, place);
            waitUntil("the order is turned", [&] { return names() == order; });
        }
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
    controller().actionListCommands().moveAction(1, 0);
    EXPECT_EQ(controller().compositeAction().actionAtIndex(0).actionName(), "Make uppercase");
    EXPECT_EQ(steps->currentIndex().row(), 0);
    click("removeStep");
    EXPECT_EQ(steps->model()->rowCount(), 1);
    EXPECT_EQ(currentAction().actionName(), "Produce numbered list");
}

TEST_F(MainRoad, TurnsButtonsOnWithTheirCommands) {
    const auto areOn = [this] {
        std::string result;
        for (const auto& [button, name] : {std::pair("removeButton", "removeFile"),
                                           {"createFileListButton", "createFileList"},
                                           {"okButton", "ok"},
                                           {"removeStep", "removeAction"},
                                           {"moveStepUp", "nudgeActionUp"}}) {
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

/// How the program comes to its end.
struct Way {
    const char* name;
    void (*end)(MainWindow&);
    bool isCommand = false; ///< which is off during a run
};

const Way ways[] = {
    {"window", [](MainWindow& window) { window.close(); }},
    {"command", [](MainWindow& window) { window.findChild<QAction*>("cancel")->trigger(); }, true},
    {"session",
     [](MainWindow&) {
         QEvent quit(QEvent::Quit);
         QApplication::sendEvent(qApp, &quit);
     }},
    {"signal", [](MainWindow&) { std::raise(SIGTERM); }},
};

class Ending : public WindowFixture {
  protected:
    /// Runs the event loop as the program does, ends it in this way, and takes all down. A report of the run
    /// that comes up on the way is closed.
    End endBy(const Way& way) {
        QTimer::singleShot(0, qApp, [&] { way.end(application->window()); });
        ::testing::internal::CaptureStderr();
        const End end = runToTheEnd([] {});
        application.reset(); // workers that wait for an answer are freed, or this never returns
        errors = ::testing::internal::GetCapturedStderr();
        return end;
    }

    std::string errors; ///< what the program wrote

    void startWithFiles(int count) {
        std::vector<std::string> paths;
        for (int i = 0; i < count; ++i)
            paths.push_back(makeFile(std::to_string(i) + ".txt"));
        start(paths);
    }
};

TEST_F(Ending, StopsAQuestionInEachWay) {
    for (const Way& way : ways) {
        if (way.isCommand)
            continue;
        SCOPED_TRACE(way.name);
        startWithFiles(3);
        set("interactiveMode", 1);
        click("okButton");
        waitFor("confirmRenameWindow");
        EXPECT_FALSE(command("cancel").isEnabled());
        const End end = endBy(way);
        const std::string stopped = "The rename was stopped: 0 of 3 items have got their new names.";
        const std::string seen =
            "The run was stopped.|No file names were changed.\n3 items still have their old names.";
        const bool isSeen = std::string(way.name) == "window";
        EXPECT_EQ(end.status, isSeen ? 0 : 3);
        EXPECT_EQ(end.told, isSeen ? seen : "");
        EXPECT_THAT(errors, HasSubstr(isSeen ? "" : "tavrin: No file names were changed. " + stopped + "\n"));
        EXPECT_EQ(filesOnDisk(), (Names{"0.txt", "1.txt", "2.txt"}));
    }
}

TEST_F(Ending, SavesTheRecipeAndStopsAPreviewAndARunBetweenItems) {
    for (const Way& way : ways) {
        SCOPED_TRACE(way.name);
        for (const std::string& name : filesOnDisk())
            folder.remove(name);
        startWithFiles(200);
        type("prefix", way.name);
        controller().previewControl().firePendingPreview();
        endBy(way);
        EXPECT_EQ(filesOnDisk().size(), 200U);
        startWithFiles(200);
        EXPECT_EQ(currentAction().getParamString("prefix"), QString(way.name).toStdU16String());
        if (way.isCommand)
            continue;
        set("interactiveMode", 0);
        set("showSummary", 0);
        click("okButton");
        const End end = endBy(way);
        // Some have new names, some the old, none is lost, and the number is told.
        std::set<std::string> contents;
        int renamed = 0;
        for (const std::string& name : filesOnDisk()) {
            contents.insert(folder.read(name));
            renamed += name.starts_with(way.name) ? 1 : 0;
        }
        EXPECT_EQ(contents.size(), 200U);
        EXPECT_THAT(end.told + errors, HasSubstr((renamed ? std::to_string(renamed) : "No") + " file name"));
    }
}

TEST_F(Ending, RemembersTheShapeOfTheWindow) {
    start({makeFile("a.txt")});
    const auto widthOf = [this](PreviewTableModel::Column column) {
        return find<QTableView>("previewTableView")->columnWidth(column);
    };
    const auto settingsWidth = [this] { return find<QSplitter>("innerSplitter")->sizes().front(); };
    application->window().resize(1180, 640);
    trigger("showMultistepDrawer");
    waitForPreview();
    auto* handle = find<QSplitter>("innerSplitter")->handle(1);
    const QPoint grip = handle->rect().center();
    QTest::mousePress(handle, Qt::LeftButton, {}, grip);
    QTest::mouseMove(handle, grip + QPoint(74, 0));
    QTest::mouseRelease(handle, Qt::LeftButton, {}, grip + QPoint(74, 0));
    EXPECT_FALSE(controller().previewControl().isPreviewPending());
    EXPECT_EQ(controller().globalSettings().values().previewPaneWidth, find("previewPane")->width());
    const int narrow = widthOf(PreviewTableModel::newName);
    find<QTableView>("previewTableView")->setColumnWidth(PreviewTableModel::currentName, 3 * narrow);
    application->window().previewPane().sizeColumnsToFit();
    const int wide = widthOf(PreviewTableModel::currentName);
    const int settings = settingsWidth();
    EXPECT_GT(wide, 2 * widthOf(PreviewTableModel::newName));
    EXPECT_NE(settings, 346);
    endBy(ways[0]);
    start({folder.path("a.txt")});
    EXPECT_EQ(application->window().size(), QSize(1180, 640));
    EXPECT_EQ(settingsWidth(), settings);
    EXPECT_NEAR(widthOf(PreviewTableModel::currentName), wide, 3);
}

TEST_F(Ending, KeepsAChainOfANewerVersionUntilThereIsAnother) {
    const PropertyValue newer = chain({{"Fold time", {}}});
    start();
    application.reset();
    UserDefaults defaults(data.path() + "/defaults.plist");
    defaults.setObject("composite action", newer);
    ASSERT_TRUE(defaults.synchronize());

    start({makeFile("a.txt")});
    waitForBar("The list of actions that was stored can't be used. ");
    waitForNames({"Image_01.txt"}); // the rest works
    endBy(ways[0]);
    EXPECT_EQ(UserDefaults(data.path() + "/defaults.plist").objectForKey("composite action"), newer);

    start();
    chooseAction("Make uppercase");
    endBy(ways[0]);
    start();
    EXPECT_EQ(currentAction().actionName(), "Make uppercase");
}

} // namespace
} // namespace tavrin::test
