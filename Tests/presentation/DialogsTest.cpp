#include "documents/PresetsManager.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/UserDefaults.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowCommands.h"
#include "presentation/WindowFixture.h"
#include "presentation/settings/ActionSearch.h"
#include "shell/MainController.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>
#include <QTreeWidget>

namespace tavrin::test {

namespace {

class DialogTests : public WindowFixture {
  protected:
    void trigger(const char* command) { application->window().commands().command(command)->trigger(); }
};

TEST_F(DialogTests, SavesAppliesEditsAndDeletesPresets) {
    start();
    PresetsManager& manager = application->controller().presetsManager();
    chooseAction("Make uppercase");
    trigger("createNewPresetWithCurrentSettings");
    type("presetName", "Loud");
    find<QDialog>("newPresetWindow")->accept();
    ASSERT_EQ(manager.getPresetTitles(), (std::vector<std::u16string>{u"Loud"}));

    chooseAction("Make lowercase");
    application->controller().applyPreset(0);
    EXPECT_EQ(currentAction().actionName(), "Make uppercase");

    // A name that is taken can't be saved.
    trigger("createNewPresetWithCurrentSettings");
    type("presetName", "Loud");
    auto* buttons = find<QDialog>("newPresetWindow")->findChild<QDialogButtonBox*>();
    EXPECT_FALSE(buttons->button(QDialogButtonBox::Save)->isEnabled());
    EXPECT_EQ(find<QLabel>("presetNote")->text(), "A preset of this name exists.");
    find<QDialog>("newPresetWindow")->reject();

    trigger("organizePresets");
    click("editPreset");
    type("presetName", "Louder");
    find<QDialog>("editPresetWindow")->accept();
    EXPECT_EQ(manager.getPresetTitles(), (std::vector<std::u16string>{u"Louder"}));
    waitUntil("the list shows the new name", [this] {
        auto* list = find<QTreeWidget>("presetList");
        return list->topLevelItemCount() == 1 && list->topLevelItem(0)->text(0) == "Louder";
    });
    click("deletePreset");
    waitUntil("the question", [] { return findWidget("alert") != nullptr; });
    find<QDialog>("alert")->findChildren<QPushButton*>().front()->click();
    EXPECT_EQ(manager.count(), 0U);
}

TEST_F(DialogTests, ChangeSettingsLive) {
    start();
    trigger("showPreferencesDialog");
    auto& settings = application->controller().globalSettings();
    for (const char* key : {"quitAfterRename", "continueAfterRename", "interactiveMode", "showSummary",
                            "copyFileComments", "quickLookThumbnail", "accurateFolderSize", "lockedDroplet",
                            "previewConflictResolution", "conflictResolutionDontChangeFirst"}) {
        SCOPED_TRACE(key);
        auto* window = find("preferencesWindow");
        auto* box = window->findChild<QCheckBox*>(key);
        ASSERT_NE(box, nullptr);
        const bool wasOn = box->isChecked();
        box->click();
        EXPECT_EQ(boolValue(*settings.valueForKey(key)), !wasOn);
        settings.setValue(wasOn ? 1 : 0, key);
        EXPECT_EQ(box->isChecked(), wasOn);
    }
    auto* scheme = find("preferencesWindow")->findChild<QComboBox*>("conflictResolutionScheme");
    ASSERT_EQ(scheme->count(), 14);
    QTest::keyClick(scheme, Qt::Key_Up);
    EXPECT_EQ(settings.conflictResolutionScheme(), 8);
}

TEST_F(DialogTests, WarnWhenShootingDatesAreSwitchedOff) {
    start();
    trigger("showPreferencesDialog");
    find("preferencesWindow")->findChild<QCheckBox*>("retrieveEXIFInformation")->click();
    waitUntil("the warning", [] { return findWidget("alert") != nullptr; });
    find<QDialog>("alert")->accept();
}

TEST_F(DialogTests, ExplainAnEmptyListOnce) {
    start();
    application->controller().ok();
    auto* notice = find<QDialog>("noFilesSelectedDialog");
    notice->findChild<QCheckBox*>("suppressionBox")->click();
    notice->accept();
    QTest::qWait(0);
    application->controller().ok();
    const QWidget* again = findWidget("noFilesSelectedDialog");
    EXPECT_TRUE(!again || !again->isVisible());
}

TEST_F(DialogTests, SaveAListInEachForm) {
    start({makeFile("a.txt")});
    waitForNames({"Image_01.txt"});
    trigger("createFileList");
    auto* dialog = find<QDialog>("saveListDialog");
    dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click();
    auto* files = find<QFileDialog>("savePathDialog");
    const std::string path = folder.path("list.txt");
    files->selectFile(QString::fromStdString(path));
    files->findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(path));
    QMetaObject::invokeMethod(files, "accept");
    waitUntil("the list is written", [this] { return folder.kind("list.txt").has_value(); });
    waitForPreview();
    EXPECT_EQ(folder.read("list.txt"), "a.txt\tImage_01.txt\n");
}

TEST_F(DialogTests, OpenHelpAtEveryAnchor) {
    start();
    for (const char* anchor : {"helpTopic6", "helpTopic7", "helpTopic18", "helpTopic19", "helpTopic28",
                               "helpTopic29", "helpTopic32", "helpTopic41", "helpTopic57", "helpTopic60",
                               "helpTopic61", "helpTopic67", "helpCategory14"}) {
        application->controller().showHelpAnchor(anchor);
        EXPECT_TRUE(find<QTextBrowser>("helpBrowser")->toHtml().contains(QString("name=\"%1\"").arg(anchor)))
            << anchor;
    }
    type("helpFilter", "droplet silent");
    auto* contents = find<QListWidget>("helpContents");
    int visible = 0;
    for (int row = 0; row < contents->count(); ++row)
        visible += contents->item(row)->isHidden() ? 0 : 1;
    EXPECT_EQ(visible, 1);
}

TEST_F(DialogTests, SearchFindsActionsAsPeopleCallThem) {
    start();
    const ActionSearch search(ActionList::sharedActionList());
    struct Case {
        const char16_t* typed;
        const char* category; ///< of the first hit
    };
    const Case cases[] = {
        {u"regex", "Replace"}, {u"counter", "Number"},       {u"strip", "Remove"},
        {u"title", "Case"},    {u"diacritics", "Case"},      {u"id3", "Music"},
        {u"taken", "Date"},    {u"roman", "Roman numerals"}, {u"windows", "Length & systems"},
        {u"csv", "List file"}, {u"Replace text", "Replace"}};
    for (const Case& each : cases) {
        const auto hits = search.find(each.typed, 12);
        ASSERT_FALSE(hits.empty()) << QString::fromUtf16(each.typed).toStdString();
        EXPECT_EQ(QString::fromStdU16String(hits.front().category).toStdString(), each.category)
            << QString::fromUtf16(each.typed).toStdString();
    }
    EXPECT_TRUE(search.find(u"zzzz", 12).empty());
    EXPECT_EQ(search.find(u"", 500).size(), search.find(u" ", 500).size());
}

} // namespace

} // namespace tavrin::test
