#include "actions/CompositeRenameAction.h"
#include "documents/PresetsManager.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowFixture.h"
#include "shell/MainController.h"

#include <QAction>
#include <QDialog>
#include <QMessageBox>

namespace tavrin::test {

namespace {

class DamagedState : public WindowFixture {
  protected:
    std::string errorText(const char* name = "errorAlert") {
        const auto* box = waitFor<QMessageBox>(name);
        return (box->text() + ' ' + box->informativeText()).toStdString();
    }

    /// What a later program would find stored.
    [[nodiscard]] std::optional<PropertyValue> storedChain() const {
        return UserDefaults(data.path() + "/defaults.plist").objectForKey("composite action");
    }
};

TEST_F(DamagedState, TellsOfPresetsThatAreNoGoodAndChangesNothing) {
    const std::pair<const char*, const char*> cases[] = {
        {"not a property list", "line 1"},
        {"<plist><dict><key>description</key><string>x</string></dict></plist>", "compositeAction"},
        {"<plist><dict><key>compositeAction</key><dict><key>composite actions array</key><array><dict>"
         "<key>action name</key><string>Fold time</string></dict></array></dict></dict></plist>",
         "Fold time"},
        {"<plist><dict><key>compositeAction</key><string>x</string></dict></plist>", "compositeAction"},
    };
    start();
    chooseAction("Make uppercase");
    MainController& controller = application->controller();
    for (const auto& [content, culprit] : cases) {
        SCOPED_TRACE(content);
        data.write("Presets/Damaged.tvrn8preset.plist", content);
        controller.presetsManager().loadPresets();
        controller.applyPreset(0);
        EXPECT_TRUE(errorText().starts_with("The preset can't be used."));
        EXPECT_NE(errorText().find(culprit), std::string::npos) << errorText();
        find<QDialog>("errorAlert")->accept();
        waitUntilGone("errorAlert");
        EXPECT_EQ(controller.compositeAction().count(), 1U);
        EXPECT_EQ(currentAction().actionName(), "Make uppercase");
        EXPECT_EQ(data.read("Presets/Damaged.tvrn8preset.plist"), content);
    }
}

TEST_F(DamagedState, KeepsAChainOfANewerVersionUntilThereIsAnother) {
    start();
    application.reset();
    const PropertyValue chain = PropertyDictionary{
        {"currentActionIndex", 0},
        {"composite actions array",
         PropertyArray{PropertyDictionary{{"action name", u"Fold time"},
                                          {"action parameter list", PropertyDictionary{}}}}}};
    UserDefaults defaults(data.path() + "/defaults.plist");
    defaults.setObject("composite action", chain);
    ASSERT_TRUE(defaults.synchronize());

    start({makeFile("a.txt")});
    EXPECT_NE(errorText().find("Fold time"), std::string::npos) << errorText();
    EXPECT_EQ(errorText().find("nib"), std::string::npos) << errorText();
    find<QDialog>("errorAlert")->accept();
    waitForNames({"Image_01.txt"}); // the rest works
    application->controller().saveUserDefaults();
    application.reset();
    EXPECT_EQ(storedChain(), chain);

    start();
    waitFor<QDialog>("errorAlert")->accept();
    chooseAction("Make uppercase");
    restart();
    EXPECT_EQ(currentAction().actionName(), "Make uppercase");
}

TEST_F(DamagedState, WorksWithoutAFolderForItsData) {
    const std::string file = data.write("occupied", "x");
    TavrinApplication::Options options;
    options.defaultsPath = file + "/defaults.plist";
    options.dataFolder = file + "/data";
    application = std::make_unique<TavrinApplication>(options);
    application->start({makeFile("a.txt")});
    EXPECT_TRUE(errorText("noticeAlert").starts_with("The list of items can't be kept in a file"));
    find<QDialog>("noticeAlert")->accept();
    waitUntilGone("noticeAlert");
    waitForNames({"Image_01.txt"});
    command("createNewPresetWithCurrentSettings").trigger();
    find<QDialog>("newPresetWindow")->accept();
    EXPECT_TRUE(errorText().starts_with("The preset can't be saved as \"" + options.dataFolder))
        << errorText();
    find<QDialog>("errorAlert")->accept();
    EXPECT_EQ(application->controller().presetsManager().count(), 0U);
    application->controller().windowWillClose();
    EXPECT_EQ(data.read("occupied"), "x");
}

} // namespace

} // namespace tavrin::test
