#include "actions/CompositeRenameAction.h"
#include "common/DropletLists.h"
#include "common/Variable.h"
#include "documents/DropletBundleWriter.h"
#include "documents/DropletHandOver.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowFixture.h"
#include "shell/MainController.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <filesystem>

namespace tavrin::test {

namespace {

/// The window as a droplet has it, and droplets as the window makes them.
class DropletWindow : public WindowFixture {
  protected:
    void startDroplet(PropertyDictionary settings, const std::vector<std::string>& files = {}) {
        TavrinApplication::Options options;
        options.defaultsPath = data.path() + "/defaults.plist";
        options.dataFolder = data.path();
        application = std::make_unique<TavrinApplication>(options);
        const PropertyDictionary list = dropletThatAdds(u"X", std::move(settings));
        ASSERT_EQ(
            DropletBundleWriter("/usr/bin/tavrin", false).writeDropletWithDictionary(list, bundle.path()),
            std::nullopt);
        auto start = DropletRequest{bundle.path(), "", files}.start();
        ASSERT_TRUE(std::holds_alternative<DropletRequest::Start>(start)) << std::get<1>(start).message;
        application->setDroplet(std::get<DropletRequest::Start>(start).record);
        application->start({});
    }
    /// Runs the program's event loop until it ends by itself.
    static bool endsByItself() {
        QTimer::singleShot(10000, qApp, [] { QCoreApplication::exit(1); });
        return QApplication::exec() == 0;
    }

    TemporaryFolder desktop;
    Variable dataHome{"XDG_DATA_HOME", data.path().c_str()};
    DropletBundle bundle{desktop.path("A.app")};
};

TEST_F(DropletWindow, EditsADropletAndSavesItBack) {
    startDroplet({{"silentDroplet", 0}, {"discloseAdvancedOptions", 0}});
    waitFor<QMessageBox>("dropletEditModeDialog")->close();
    waitUntilGone("dropletEditModeDialog");
    EXPECT_EQ(application->window().windowTitle(), "Editing Rename Droplet");
    EXPECT_FALSE(find("createDropletButton")->isVisible());
    EXPECT_FALSE(find("createFileListButton")->isVisible());
    EXPECT_FALSE(command("createDroplet").isVisible());
    EXPECT_TRUE(find("dropletBanner")->isVisible());
    EXPECT_TRUE(find("silentDroplet")->isVisible());
    EXPECT_EQ(find<QCheckBox>("silentDroplet")->text(), "Execute as a \"s&ilent\" droplet");
    waitUntil("the status line says what files are for", [this] {
        return find<QLabel>("statusText")->text() ==
               "Drag file you want to preview into the preview table above.";
    });
    EXPECT_EQ(find<QPushButton>("okButton")->text(), "&Save");
    click("silentDroplet");
    type("string", "edited");
    QTimer::singleShot(0, qApp, [this] { command("ok").trigger(); });
    EXPECT_TRUE(endsByItself());
    const auto recipe = bundle.readRecipe();
    ASSERT_TRUE(std::holds_alternative<Recipe>(recipe));
    EXPECT_EQ(*tavrin::find(*std::get<Recipe>(recipe).globalSettings, "silentDroplet"), PropertyValue(1));
    EXPECT_EQ(std::get<Recipe>(recipe).flatParameterList,
              application->controller().compositeAction().getFlatParameterList());
    EXPECT_EQ(currentAction().getParamString("string"), u"edited");
}

TEST_F(DropletWindow, AsksAndTellsWithoutTheWindowAndEndsWithTheLast) {
    startDroplet({{"interactiveMode", 1}, {"showSummary", 1}}, {makeFile("a"), makeFile("b")});
    std::string summary;
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, qApp, [&] {
        EXPECT_FALSE(application->window().isVisible());
        QWidget* sheet = findWidget("confirmRenameWindow");
        QWidget* all = findWidget("confirmAll");
        if (sheet && sheet->isVisible() && all && all->isEnabled())
            QTest::mouseClick(all, Qt::LeftButton);
        auto* alert = dynamic_cast<QMessageBox*>(findWidget("alert"));
        if (alert && alert->isVisible() && alert->isEnabled()) {
            summary = alert->text().toStdString();
            alert->close();
        }
    });
    user.start(20);
    EXPECT_TRUE(endsByItself());
    EXPECT_EQ(summary, "2 file names were changed.");
    EXPECT_EQ(filesOnDisk(), (std::vector<std::string>{"aX", "bX"}));
}

TEST_F(DropletWindow, StopsWhenTheWindowOfItsProgressIsClosed) {
    startDroplet({{"interactiveMode", 1}, {"showSummary", 0}}, {makeFile("a"), makeFile("b")});
    std::string summary;
    QTimer user;
    QObject::connect(&user, &QTimer::timeout, qApp, [&] {
        const QWidget* sheet = findWidget("confirmRenameWindow");
        if (sheet && sheet->isVisible()) {
            EXPECT_FALSE(find("progressWindow")->close()) << "it stays until the run has ended";
        }
        auto* alert = dynamic_cast<QMessageBox*>(findWidget("alert"));
        if (alert && alert->isVisible()) {
            summary = (alert->text() + "|" + alert->informativeText()).toStdString();
            alert->close();
        }
    });
    user.start(20);
    EXPECT_TRUE(endsByItself());
    EXPECT_EQ(summary,
              "No file names were changed.|The rename was stopped: 0 of 2 items have got their new names.");
    EXPECT_EQ(filesOnDisk(), (std::vector<std::string>{"a", "b"}));
}

TEST_F(DropletWindow, CreatesADropletAndAsksBeforeReplacingIt) {
    start();
    const DropletBundle written(desktop.path() + "/A \"b\".app");
    for (const char* button : {"", "cancel", "&Replace"}) {
        SCOPED_TRACE(button);
        const bool isFirst = *button == 0;
        if (std::string(button) == "&Replace")
            chooseAction("Add to end");
        command("createDroplet").trigger();
        if (isFirst) {
            auto* information = waitFor<QMessageBox>("dropletInformationDialog");
            find<QCheckBox>("suppressionBox")->setChecked(true);
            information->defaultButton()->click();
            waitUntilGone("dropletInformationDialog");
        }
        auto* dialog = waitFor<QFileDialog>("dropletPathDialog");
        dialog->setDirectory(QString::fromStdString(desktop.path()));
        dialog->findChild<QLineEdit*>("fileNameEdit")->setText("A \"b\".c");
        QMetaObject::invokeMethod(dialog, "accept", Qt::DirectConnection);
        if (!isFirst) {
            auto* question = waitFor<QMessageBox>("replaceDropletAlert");
            for (QAbstractButton* each : question->buttons())
                if ((each->text() == "&Replace") == (std::string(button) == "&Replace"))
                    each->click();
            waitUntilGone("replaceDropletAlert");
        }
        // Who does not want to replace it can choose another name.
        if (std::string(button) == "cancel")
            waitFor<QFileDialog>("dropletPathDialog")->reject();
        waitUntilGone("dropletPathDialog");
        const auto recipe = written.readRecipe();
        ASSERT_TRUE(std::holds_alternative<Recipe>(recipe));
        EXPECT_EQ(std::get<Recipe>(recipe).flatParameterList ==
                      application->controller().compositeAction().getFlatParameterList(),
                  true);
    }
    EXPECT_TRUE(std::filesystem::exists(written.launcherPath()));
}

} // namespace

} // namespace tavrin::test
