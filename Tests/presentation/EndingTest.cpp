#include "common/Recipes.h"
#include "presentation/WindowFixture.h"
#include "presentation/preview/PreviewPane.h"

#include <csignal>

namespace tavrin::test {

namespace {

using ::testing::HasSubstr;

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
        const bool isSeen = std::string(way.name) == "window";
        EXPECT_EQ(end.status, isSeen ? 0 : 3);
        EXPECT_EQ(end.told, isSeen ? "No file names were changed.|" + stopped : "");
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
    application->window().resize(1000, 640);
    find<QSplitter>("innerSplitter")->setSizes({420, 580});
    waitForPreview();
    const int narrow = widthOf(PreviewTableModel::newName);
    find<QTableView>("previewTableView")->setColumnWidth(PreviewTableModel::currentName, 3 * narrow);
    application->window().previewPane().sizeColumnsToFit();
    const int wide = widthOf(PreviewTableModel::currentName);
    const int settings = settingsWidth();
    EXPECT_GT(wide, 2 * widthOf(PreviewTableModel::newName));
    EXPECT_NE(settings, 346);
    endBy(ways[0]);
    start({folder.path("a.txt")});
    EXPECT_EQ(application->window().size(), QSize(1000, 640));
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
    EXPECT_THAT(close("errorAlert"), HasSubstr("Fold time"));
    waitForNames({"Image_01.txt"}); // the rest works
    endBy(ways[0]);
    EXPECT_EQ(UserDefaults(data.path() + "/defaults.plist").objectForKey("composite action"), newer);

    start();
    close("errorAlert");
    chooseAction("Make uppercase");
    endBy(ways[0]);
    start();
    EXPECT_EQ(currentAction().actionName(), "Make uppercase");
}

} // namespace

} // namespace tavrin::test
