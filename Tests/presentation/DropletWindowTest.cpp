#include "common/Recipes.h"
#include "documents/DropletBundleWriter.h"
#include "documents/DropletHandOver.h"
#include "presentation/WindowFixture.h"

namespace tavrin::test {

namespace {

/// The window as a droplet has it, and droplets as the window makes them.
class DropletWindow : public WindowFixture {
  protected:
    void startDroplet(PropertyDictionary settings, const std::vector<std::string>& files = {}) {
        make();
        const PropertyDictionary list = dropletThatAdds(u"X", std::move(settings));
        DropletBundleWriter writer("/usr/bin/tavrin", false);
        ASSERT_EQ(writer.writeDropletWithDictionary(list, bundle.path()), std::nullopt);
        const DropletRequest request{bundle.path(), "", files};
        application->setDroplet(std::get<DropletRequest::Start>(request.start()).record);
        application->start({});
    }
    TemporaryFolder desktop;
    Variable dataHome{"XDG_DATA_HOME", data.path().c_str()};
    DropletBundle bundle{desktop.path("A.app")};
};

TEST_F(DropletWindow, EditsADropletAndSavesItBack) {
    startDroplet({{"silentDroplet", 0}, {"discloseAdvancedOptions", 0}});
    close("dropletEditModeDialog");
    EXPECT_EQ(application->window().windowTitle(), "Editing Rename Droplet");
    EXPECT_TRUE(find("dropletBanner")->isVisible() && find("silentDroplet")->isVisible());
    EXPECT_FALSE(find("createDropletButton")->isVisible() || find("createFileListButton")->isVisible());
    EXPECT_FALSE(command("createDroplet").isVisible());
    waitForText("silentDroplet", "Execute as a \"s&ilent\" droplet");
    waitForText("statusText", "Drag file you want to preview into the preview table above.");
    waitForText("okButton", "&Save");
    click("silentDroplet");
    type("string", "edited");
    QTimer::singleShot(0, qApp, [this] { trigger("ok"); });
    EXPECT_EQ(runToTheEnd([] {}).status, 0);
    const auto recipe = std::get<Recipe>(bundle.readRecipe());
    EXPECT_EQ(*tavrin::find(*recipe.globalSettings, "silentDroplet"), PropertyValue(1));
    EXPECT_EQ(recipe.flatParameterList, controller().compositeAction().getFlatParameterList());
    EXPECT_EQ(currentAction().getParamString("string"), u"edited");
}

TEST_F(DropletWindow, AsksTellsAndStopsWithoutTheWindowAndEndsWithTheLast) {
    const std::string stopped =
        "No file names were changed.|The rename was stopped: 0 of 2 items have got their new names.";
    for (const bool stops : {true, false}) {
        startDroplet({{"interactiveMode", 1}, {"showSummary", stops ? 0 : 1}},
                     {makeFile("a"), makeFile("b")});
        const End end = runToTheEnd([this, stops] {
            EXPECT_FALSE(application->window().isVisible());
            QWidget* all = findWidget("confirmAll");
            if (!all || !all->isVisible() || !all->isEnabled())
                return;
            if (stops)
                EXPECT_FALSE(find("progressWindow")->close()) << "it stays until the run has ended";
            else
                QTest::mouseClick(all, Qt::LeftButton);
        });
        EXPECT_EQ(end.status, 0);
        EXPECT_EQ(end.told, stops ? stopped : "2 file names were changed.|");
        EXPECT_EQ(filesOnDisk(), stops ? (Names{"a", "b"}) : (Names{"aX", "bX"}));
    }
}

TEST_F(DropletWindow, CreatesADropletAndAsksBeforeReplacingIt) {
    start();
    const DropletBundle written(desktop.path() + "/A \"b\".app");
    for (const std::string answer : {"", "Cancel", "&Replace"}) {
        SCOPED_TRACE(answer);
        if (answer == "&Replace")
            chooseAction("Add to end");
        trigger("createDroplet");
        if (answer.empty()) {
            waitFor("dropletInformationDialog");
            find<QCheckBox>("suppressionBox")->setChecked(true);
            find<QMessageBox>("dropletInformationDialog")->defaultButton()->click();
        }
        auto* dialog = waitFor<QFileDialog>("dropletPathDialog");
        dialog->setDirectory(QString::fromStdString(desktop.path()));
        dialog->findChild<QLineEdit*>("fileNameEdit")->setText("A \"b\".c");
        QMetaObject::invokeMethod(dialog, "accept", Qt::DirectConnection);
        if (!answer.empty())
            for (QAbstractButton* button : waitFor<QMessageBox>("replaceDropletAlert")->buttons())
                if ((button->text() == "&Replace") == (answer == "&Replace"))
                    button->click();
        // Who does not want to replace it can choose another name.
        if (answer == "Cancel")
            waitFor<QFileDialog>("dropletPathDialog")->reject();
        waitUntilGone("dropletPathDialog");
        EXPECT_EQ(std::get<Recipe>(written.readRecipe()).flatParameterList,
                  controller().compositeAction().getFlatParameterList());
    }
    EXPECT_TRUE(std::filesystem::exists(written.launcherPath()));
}

} // namespace

} // namespace tavrin::test
