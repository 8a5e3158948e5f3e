#include "actions/CompositeRenameAction.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowFixture.h"
#include "presentation/preview/PreviewPane.h"
#include "presentation/preview/PreviewTableModel.h"
#include "shell/MainController.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QMessageBox>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <csignal>
#include <set>

namespace tavrin::test {

namespace {

/// How the program comes to its end: by the window, a command, the session, a signal.
struct Way {
    const char* name;
    void (*end)(TavrinApplication&);
    bool isCommand; ///< which is off during a run
};

const Way ways[] = {
    {"window", [](TavrinApplication& tavrin) { tavrin.window().close(); }, false},
    {"command", [](TavrinApplication& tavrin) { tavrin.window().findChild<QAction*>("cancel")->trigger(); },
     true},
    {"session",
     [](TavrinApplication&) {
         QEvent quit(QEvent::Quit);
         QApplication::sendEvent(qApp, &quit);
     },
     false},
    {"signal", [](TavrinApplication&) { std::raise(SIGTERM); }, false},
};

class Ending : public WindowFixture {
  protected:
    /// Runs the event loop as the program does, ends it in this way, and takes all down. Gives the report of
    /// a run that comes up on the way and is then closed.
    std::string endBy(const Way& way) {
        std::string report;
        QTimer reader;
        QObject::connect(&reader, &QTimer::timeout, [&] {
            auto* alert = dynamic_cast<QMessageBox*>(findWidget("alert"));
            if (!alert || !alert->isVisible())
                return;
            report = (alert->text() + "|" + alert->informativeText()).toStdString();
            alert->accept();
        });
        reader.start(1);
        QTimer::singleShot(0, qApp, [&] { way.end(*application); });
        bool isLate = false;
        QTimer watchdog;
        QObject::connect(&watchdog, &QTimer::timeout, [&] {
            isLate = true;
            QCoreApplication::exit(1);
        });
        watchdog.start(5000);
        status = QApplication::exec();
        EXPECT_FALSE(isLate) << "the event loop did not end";
        application.reset(); // workers that wait for an answer are freed, or this never returns
        return report;
    }

    int status = 0; ///< that the program would end with

    void startWithFiles(int count) {
        std::vector<std::string> paths;
        for (int i = 0; i < count; ++i)
            paths.push_back(makeFile(std::to_string(i) + ".txt", std::to_string(i)));
        start(paths);
        waitUntil("the names show", [&] { return newNames().size() == static_cast<std::size_t>(count); });
    }

    [[nodiscard]] std::size_t countOfFiles() const { return filesOnDisk().size(); }
};

TEST_F(Ending, SavesTheRecipeInEachWay) {
    for (const Way& way : ways) {
        SCOPED_TRACE(way.name);
        start();
        chooseAction("Replace text");
        type("searchTerm", way.name);
        endBy(way);
        start();
        EXPECT_EQ(currentAction().actionName(), "Replace text");
        EXPECT_EQ(currentAction().getParamString("searchTerm"), QString(way.name).toStdU16String());
        chooseAction("Make uppercase");
        application.reset();
    }
}

TEST_F(Ending, StopsAQuestionInEachWay) {
    for (const Way& way : ways) {
        if (way.isCommand)
            continue;
        SCOPED_TRACE(way.name);
        startWithFiles(3);
        application->controller().globalSettings().setValue(1, "interactiveMode");
        click("okButton");
        waitFor("confirmRenameWindow");
        EXPECT_FALSE(command("cancel").isEnabled());
        ::testing::internal::CaptureStderr();
        const std::string onScreen = endBy(way);
        const std::string told = ::testing::internal::GetCapturedStderr();
        const std::string stopped = "The rename was stopped: 0 of 3 items have got their new names.";
        const bool isSeen = std::string(way.name) == "window";
        EXPECT_EQ(status, isSeen ? 0 : 3);
        EXPECT_EQ(onScreen, isSeen ? "No file names were changed.|" + stopped : "");
        EXPECT_THAT(told, ::testing::HasSubstr(
                              isSeen ? "" : "tavrin: No file names were changed. " + stopped + "\n"));
        EXPECT_EQ(filesOnDisk(), (std::vector<std::string>{"0.txt", "1.txt", "2.txt"}));
    }
}

TEST_F(Ending, StopsAPreviewAndARunBetweenItems) {
    for (const Way& way : ways) {
        SCOPED_TRACE(way.name);
        for (const std::string& name : filesOnDisk())
            folder.remove(name);
        startWithFiles(200);
        type("prefix", QString("%1 ").arg(way.name));
        application->controller().previewControl().firePendingPreview();
        endBy(way);
        EXPECT_EQ(countOfFiles(), 200U);
        if (way.isCommand)
            continue;
        startWithFiles(200);
        application->controller().globalSettings().setValue(0, "interactiveMode");
        application->controller().globalSettings().setValue(0, "showSummary");
        click("okButton");
        ::testing::internal::CaptureStderr();
        std::string report = endBy(way);
        report += ::testing::internal::GetCapturedStderr();
        // Some have new names, some the old, none is lost, and the number is told.
        std::set<std::string> contents;
        int renamed = 0;
        for (const std::string& name : filesOnDisk()) {
            contents.insert(folder.read(name));
            renamed += name.starts_with(way.name) ? 1 : 0;
        }
        EXPECT_EQ(contents.size(), 200U);
        EXPECT_THAT(report,
                    ::testing::HasSubstr(renamed == 0   ? "No file names were changed."
                                         : renamed == 1 ? "1 file name was changed."
                                                        : std::to_string(renamed) + " file names were"));
    }
}

TEST_F(Ending, RemembersTheShapeOfTheWindow) {
    start({makeFile("a.txt")});
    MainWindow* window = &application->window();
    window->resize(1000, 640);
    auto* splitter = find<QSplitter>("innerSplitter");
    splitter->setSizes({420, 580});
    waitForPreview();
    const int settingsWidth = splitter->sizes().front();
    EXPECT_NE(settingsWidth, 346);
    auto* table = find<QTableView>("previewTableView");
    table->setColumnWidth(PreviewTableModel::currentName, 3 * table->columnWidth(PreviewTableModel::newName));
    window->previewPane().sizeColumnsToFit();
    const int nameWidth = table->columnWidth(PreviewTableModel::currentName);
    EXPECT_GT(nameWidth, 2 * table->columnWidth(PreviewTableModel::newName));
    endBy(ways[0]);
    start({folder.path("a.txt")});
    EXPECT_EQ(application->window().size(), QSize(1000, 640));
    EXPECT_EQ(find<QSplitter>("innerSplitter")->sizes().front(), settingsWidth);
    EXPECT_NEAR(find<QTableView>("previewTableView")->columnWidth(PreviewTableModel::currentName), nameWidth,
                3);
}

} // namespace

} // namespace tavrin::test
