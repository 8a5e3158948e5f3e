#include "presentation/Dialogs.h"

#include "actions/ActionFamilies.h"
#include "actions/CompositeRenameAction.h"
#include "documents/PresetsManager.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowFixture.h"
#include "presentation/settings/ActionSearch.h"
#include "shell/MainController.h"
#include "support/text/Text.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTreeWidget>
#include <QUrl>

namespace tavrin::test {

namespace {

class DialogTests : public WindowFixture {
  protected:
    void trigger(const char* name) { command(name).trigger(); }

    /// The text of the paragraph that bears an anchor of the help, if it is in sight.
    std::string textInSightAt(const std::string& anchor) {
        auto* browser = find<QTextBrowser>("helpBrowser");
        for (QTextBlock block = browser->document()->begin(); block.isValid(); block = block.next())
            for (auto part = block.begin(); !part.atEnd(); ++part)
                if (part.fragment().charFormat().anchorNames().contains(QString::fromStdString(anchor)))
                    return browser->viewport()->rect().contains(browser->cursorRect(QTextCursor(block)))
                               ? block.text().toStdString()
                               : "out of sight";
        return {};
    }
};

TEST_F(DialogTests, ShowsWhatAnUndoWouldDoAndDoesItOnAYesAlone) {
    start({makeFile("a"), makeFile("b")});
    application->controller().globalSettings().setValue(0, "interactiveMode");
    application->controller().globalSettings().setValue(0, "showSummary");
    chooseAction("Make uppercase");
    currentAction().setValue(0, "fragmentSelection");
    waitForNames({"A", "B"});
    trigger("ok");
    waitUntil("renamed", [this] { return filesOnDisk() == std::vector<std::string>{"A", "B"}; });
    QAction& undo = command("undoRename");
    for (const bool agrees : {false, true}) {
        waitUntil("the command is on", [&undo] { return undo.isEnabled(); });
        undo.trigger();
        auto* dialog = waitFor<QDialog>("takeBackDialog");
        EXPECT_TRUE(find<QPushButton>("takeBackButton")->isDefault());
        EXPECT_EQ(find<QTreeWidget>("takeBackList")->topLevelItem(0)->text(1), "a");
        EXPECT_EQ(findWidget("takeBackProblems"), nullptr);
        agrees ? dialog->accept() : dialog->reject();
        waitUntilGone("takeBackDialog");
        EXPECT_TRUE(agrees || filesOnDisk() == (std::vector<std::string>{"A", "B"}));
    }
    waitUntil("back", [this] { return filesOnDisk() == std::vector<std::string>{"a", "b"}; });
    waitForPreview();
    waitForNames({"A", "B"});
}

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
    find<QLineEdit>("presetName")->setText(QString(119, QChar(0xE4)));
    EXPECT_FALSE(buttons->button(QDialogButtonBox::Save)->isEnabled());
    EXPECT_EQ(find<QLabel>("presetNote")->text(), "This name is too long for a file: 256 of 255 bytes.");
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
    EXPECT_EQ(waitFor<QMessageBox>("alert")->text().toStdString(),
              "Are you sure that you want to delete the preset \"Louder\"?");
    find<QMessageBox>("alert")->defaultButton()->click();
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
    EXPECT_EQ(settings.values().conflictResolutionScheme, 8);
}

// Reasons can be longer than any line, and are there to be read whole and copied.
TEST_F(DialogTests, ShowWholeReasonsAndCountAllFailures) {
    start();
    const std::string reason = "File name too long: 261 of 255 bytes: " + std::string(255, 'x');
    const std::pair<std::size_t, const char*> heads[] = {
        {1, "1 item was not renamed.\nDone."},
        {300000,
         "300000 items were not renamed. Those that you have been told of during the run are not listed "
         "again.\nDone."}};
    for (const auto& [count, head] : heads) {
        Dialogs::showProcessingErrors(&application->window(), {{{"Title", reason, "/f"}}, count, "Done."},
                                      [] {});
        EXPECT_EQ(waitFor<QLabel>("errorHead")->text().toStdString(), head);
        auto* message = find<QPlainTextEdit>("errorMessage");
        EXPECT_EQ(message->verticalScrollBar()->maximum(), 0);
        message->setFocus();
        QTest::keyClick(message, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(message, Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QApplication::clipboard()->text().toStdString(), reason);
        find<QDialog>("errorWindow")->accept();
        waitUntilGone("errorWindow");
    }
}

// No question offers an answer that it does not allow, and each offers all that it does.
TEST_F(DialogTests, OfferTheAnswersThatAreAllowed) {
    start();
    const std::pair<const char*, ConfirmationChoice> buttons[] = {{"confirmOne", ConfirmationChoice::one},
                                                                  {"confirmAll", ConfirmationChoice::all},
                                                                  {"leaveOut", ConfirmationChoice::leaveOut},
                                                                  {"confirmStop", ConfirmationChoice::stop}};
    for (const RunQuestion& question : {RunQuestion(RenameQuestion()), RunQuestion(SwapQuestion()),
                                        RunQuestion(NameCycleQuestion()), RunQuestion(ProblemReport())}) {
        for (const auto& [name, choice] : buttons) {
            std::optional<ConfirmationChoice> given;
            Dialogs::ask(&application->window(), question, false,
                         [&](ConfirmationChoice answer) { given = answer; });
            QWidget* button = findWidget(name);
            const bool isOffered = button && button->isVisible();
            EXPECT_EQ(isOffered, std::ranges::count(allowedAnswers(question), choice) == 1) << name;
            if (isOffered)
                click(name);
            else
                find<QDialog>("reportProblemWindow")->reject();
            EXPECT_EQ(given, isOffered ? choice : ConfirmationChoice::stop);
            waitUntilGone("confirmStop");
        }
    }
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
    EXPECT_EQ(waitFor<QMessageBox>("alert")->text().toStdString(), "The file list was successfully saved.");
    find<QMessageBox>("alert")->accept();
}

TEST_F(DialogTests, OpenHelpAtEveryAnchor) {
    start();
    const std::pair<const char*, const char*> anchors[] = {{"helpTopic6", "Several steps"},
                                                           {"helpTopic7", "Adding files and folders"},
                                                           {"helpTopic18", "Editing a droplet"},
                                                           {"helpTopic19", "Silent droplets"},
                                                           {"helpTopic28", "Droplets"},
                                                           {"helpTopic29", "Saving a list"},
                                                           {"helpTopic32", "New names from a list"},
                                                           {"helpTopic41", "Music"},
                                                           {"helpTopic57", "File managers and the terminal"},
                                                           {"helpTopic60", "Regular expressions"},
                                                           {"helpTopic61", "Build a new name"},
                                                           {"helpTopic67", "Tags of photos and other files"},
                                                           {"helpCategory14", "Rename methods"}};
    for (const auto& [anchor, heading] : anchors) {
        SCOPED_TRACE(anchor);
        application->controller().showHelpAnchor(anchor);
        EXPECT_EQ(textInSightAt(anchor), heading);
    }
    for (const ActionEntry& entry : allActions()) {
        const std::string anchor = "action:" + std::string(entry.name);
        application->controller().showHelpAnchor(anchor);
        EXPECT_NE(textInSightAt(anchor), "") << entry.name;
    }
    application->controller().showHelpAnchor("helpTopic67");
    application->controller().showHelpAnchor("helpCategory14");
    // The way back and forward again.
    click("helpBack");
    EXPECT_NE(textInSightAt("helpTopic67"), "");
    click("helpForward");
    EXPECT_EQ(textInSightAt("helpCategory14"), "Rename methods");

    type("helpFilter", "droplet silent");
    auto* contents = find<QListWidget>("helpContents");
    int visible = 0;
    for (int row = 0; row < contents->count(); ++row)
        visible += contents->item(row)->isHidden() ? 0 : 1;
    EXPECT_EQ(visible, 1);
}

TEST_F(DialogTests, AnswerAlertsByWhicheverWayTheyAreClosed) {
    start();
    const Alert alert{.kind = AlertKind::summary,
                      .title = "Title",
                      .text = "Text",
                      .buttons = {"First", "Second"},
                      .helpAnchor = "helpTopic7"};
    struct Case {
        const char* name;
        void (*close)(QMessageBox&);
        std::size_t button;
    };
    const Case cases[] = {
        {"Return", [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }, 0},
        {"Escape", [](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }, 1},
        {"the frame", [](QMessageBox& box) { box.close(); }, 1},
        {"the second button", [](QMessageBox& box) { box.buttons().at(1)->click(); }, 1},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        std::optional<AlertAnswer> given;
        Dialogs::showAlert(&application->window(), alert, [&](AlertAnswer answer) { given = answer; });
        auto* box = find<QMessageBox>("alert");
        EXPECT_EQ(box->findChild<QCheckBox*>("suppressionBox"), nullptr);
        // The help opens beside it.
        box->button(QMessageBox::Help)->click();
        EXPECT_TRUE(find("helpWindow")->isVisible());
        EXPECT_FALSE(given);
        each.close(*box);
        waitUntilGone("alert");
        ASSERT_TRUE(given);
        EXPECT_EQ(given->button, each.button);
    }
}

TEST_F(DialogTests, EditMenuServesFieldsAndTheList) {
    start({makeFile("a.txt")});
    waitForNames({"Image_01.txt"});
    type("prefix", "some");
    trigger("selectAll");
    trigger("cut");
    EXPECT_EQ(QApplication::clipboard()->text(), "some");
    EXPECT_EQ(currentAction().getParamString("prefix"), u"");
    trigger("undo");
    EXPECT_EQ(currentAction().getParamString("prefix"), u"some");
    waitForNames({"some01.txt"});
    find("previewTableView")->setFocus();
    trigger("selectAll");
    trigger("copy");
    EXPECT_EQ(QApplication::clipboard()->text(), "a.txt\tsome01.txt\n");
    auto* files = new QMimeData;
    files->setUrls({QUrl::fromLocalFile(QString::fromStdString(makeFile("b.txt")))});
    QApplication::clipboard()->setMimeData(files);
    trigger("paste");
    waitForNames({"some01.txt", "some02.txt"});
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
