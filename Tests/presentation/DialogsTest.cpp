#include "presentation/Dialogs.h"

#include "actions/ActionFamilies.h"
#include "documents/PresetsManager.h"
#include "platform/desktop/FileManagerMenus.h"
#include "platform/propertylists/PropertyList.h"
#include "presentation/AddressFetcher.h"
#include "presentation/WindowFixture.h"
#include "presentation/settings/StackedView.h"

#include <QTcpServer>
#include <QTcpSocket>

namespace tavrin::test {
namespace {

class DialogTests : public WindowFixture {
  protected:
    /// Whether a paragraph that bears this anchor of the help is in sight.
    bool isInSight(const std::string& anchor) {
        auto* browser = find<QTextBrowser>("helpBrowser");
        for (QTextBlock block = browser->document()->begin(); block.isValid(); block = block.next())
            for (auto part = block.begin(); !part.atEnd(); ++part)
                if (part.fragment().charFormat().anchorNames().contains(QString::fromStdString(anchor)))
                    return browser->viewport()->rect().contains(browser->cursorRect(QTextCursor(block)));
        return false;
    }
};

TEST_F(DialogTests, SaveAList) {
    start({makeFile("a.txt")});
    waitForNames({"Image_01.txt"});
    trigger("createFileList");
    find("saveListDialog")->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Save)->click();
    auto* files = find<QFileDialog>("savePathDialog");
    files->findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(data.path("list.txt")));
    QMetaObject::invokeMethod(files, "accept");
    waitForBar("The file list was successfully saved.");
    EXPECT_EQ(data.read("list.txt"), "a.txt\tImage_01.txt\n");
}

TEST_F(DialogTests, SavesAppliesEditsAndDeletesPresets) {
    start();
    PresetsManager& manager = controller().presetsManager();
    chooseAction("Make uppercase");
    trigger("createNewPresetWithCurrentSettings");
    type("presetName", "Loud");
    close("newPresetWindow");
    ASSERT_EQ(manager.getPresetTitles(), (std::vector<std::u16string>{u"Loud"}));

    chooseAction("Make lowercase");
    controller().applyPreset(0);
    EXPECT_EQ(currentAction().actionName(), "Make uppercase");

    trigger("createNewPresetWithCurrentSettings");
    const std::pair<QString, const char*> notes[] = {
        {"Loud", "A preset of this name exists."},
        {QString(119, QChar(0xE4)), "This name is too long for a file: 256 of 255 bytes."}};
    const auto* buttons = find("newPresetWindow")->findChild<QDialogButtonBox*>();
    for (const auto& [name, note] : notes) {
        find<QLineEdit>("presetName")->setText(name);
        EXPECT_FALSE(buttons->button(QDialogButtonBox::Save)->isEnabled());
        waitForText("presetNote", note);
    }
    find<QDialog>("newPresetWindow")->reject();

    trigger("organizePresets");
    click("editPreset");
    type("presetName", "Louder");
    close("editPresetWindow");
    EXPECT_EQ(manager.getPresetTitles(), (std::vector<std::u16string>{u"Louder"}));
    waitUntil("the list shows the new name", [this] {
        return find<QTreeWidget>("presetList")->findItems("Louder", Qt::MatchExactly).size() == 1;
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
    const auto* window = find("preferencesWindow");
    auto& settings = controller().globalSettings();
    int count = 0;
    for (auto* box : window->findChildren<QCheckBox*>()) {
        const std::string key = box->objectName().toStdString();
        SCOPED_TRACE(key);
        if (!settings.valueForKey(key) || !box->isEnabled())
            continue;
        const bool wasOn = box->isChecked();
        box->click();
        EXPECT_EQ(boolValue(*settings.valueForKey(key)), !wasOn);
        set(key.c_str(), wasOn ? 1 : 0);
        EXPECT_EQ(box->isChecked(), wasOn);
        ++count;
    }
    EXPECT_EQ(count, 13);
    EXPECT_FALSE(find("copyFileComments")->isEnabled());
    auto* scheme = window->findChild<QComboBox*>("conflictResolutionScheme");
    ASSERT_EQ(scheme->count(), 14);
    QTest::keyClick(scheme, Qt::Key_Up);
    EXPECT_EQ(settings.values().conflictResolutionScheme, 8);
}

TEST_F(DialogTests, ChangedSettingsCountForWhatIsListed) {
    const std::string small = folder.makeFolder("b small");
    folder.write("a large/deep/file", std::string(5000, 'x'));
    folder.write("b small/file", std::string(3000, 'x'));
    start({folder.path("a large"), small});
    chooseAction("Completely rename");
    currentAction().setValue(u"x", "newName");
    trigger("showPreferencesDialog");
    const auto choose = [this](const char* key, int row) {
        auto* box = find<QComboBox>(key);
        box->setCurrentIndex(row);
        emit box->activated(row);
    };
    choose("conflictResolutionOrder1", 10);
    waitForNames({"xa", "xb"});
    choose("conflictResolutionScheme", 0);
    waitForNames({"x(1)", "x(2)"});
    find<QCheckBox>("conflictResolutionDontChangeFirst")->click();
    waitForNames({"x", "x(1)"});
    find<QCheckBox>("previewConflictResolution")->click();
    waitForNames({"x", "x"});

    chooseAction("Produce numbered list");
    set("automaticSorting", 1);
    currentAction().setValue(6, "sortingMode"); // by size
    waitForPreview();
    EXPECT_EQ(names(), (Names{"a large", "b small"}));
    find<QCheckBox>("accurateFolderSize")->click();
    waitForPreview();
    EXPECT_EQ(names(), (Names{"b small", "a large"}));
    auto* table = find<QTableView>("previewTableView");
    const int height = table->rowHeight(0);
    find<QCheckBox>("quickLookThumbnail")->click();
    EXPECT_NE(table->rowHeight(0), height);
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
        QTest::keyClick(find("errorList"), Qt::Key_C, Qt::ControlModifier);
        EXPECT_TRUE(QApplication::clipboard()->text().endsWith("/f\n"));
        close("errorWindow");
    }
}

// No question offers an answer that it does not allow, and each offers all that it does. One card serves them
// all.
TEST_F(DialogTests, OfferTheAnswersThatAreAllowed) {
    start();
    using enum ConfirmationChoice;
    const std::pair<const char*, ConfirmationChoice> buttons[] = {
        {"confirmOne", one}, {"confirmAll", all}, {"leaveOut", leaveOut}, {"confirmStop", stop}};
    const RunQuestion questions[] = {RenameQuestion(), SwapQuestion(), NameCycleQuestion(), ProblemReport()};
    QuestionCard card;
    for (const RunQuestion& question : questions)
        for (const auto& [name, choice] : buttons) {
            std::optional<ConfirmationChoice> given;
            card.ask({*find("listPages")}, question, false,
                     [&](ConfirmationChoice answer) { given = answer; });
            const auto cards = Card::in(application->window());
            ASSERT_EQ(cards.size(), 1);
            EXPECT_FALSE(application->window().menuBar()->isEnabled());
            const bool isOffered = cards.front()->findChild<QWidget*>(name) != nullptr;
            EXPECT_EQ(isOffered, std::ranges::count(allowedAnswers(question), choice) == 1) << name;
            if (isOffered)
                click(name);
            else
                cards.front()->withdraw();
            EXPECT_EQ(given, isOffered ? choice : stop);
        }
    waitUntilGone("reportProblemWindow");
    EXPECT_TRUE(application->window().menuBar()->isEnabled());
}

TEST_F(DialogTests, OpenHelpWhereverTheCodePointsTo) {
    start();
    std::set<std::string> anchors{"recipes", "recipe-words"};
    for (const ActionEntry& entry : allActions()) {
        anchors.insert("action:" + std::string(entry.name));
        anchors.insert("verb:" + std::string(entry.recipe.verb));
    }
    const QRegularExpression anchorInCode("\"(help(Topic|Category)[0-9]+)\"");
    QDirIterator sources(TAVRIN_SOURCE_FOLDER "/Code", {"*.cpp", "*.h"}, QDir::Files,
                         QDirIterator::Subdirectories);
    while (sources.hasNext()) {
        QFile source(sources.next());
        EXPECT_TRUE(source.open(QFile::ReadOnly));
        for (const auto& match : anchorInCode.globalMatch(source.readAll()))
            anchors.insert(match.captured(1).toStdString());
    }
    EXPECT_GT(anchors.size(), allActions().size() + 10);
    for (const std::string& anchor : anchors) {
        controller().showHelpAnchor(anchor);
        EXPECT_TRUE(isInSight(anchor)) << anchor;
    }
    controller().showHelpAnchor("helpTopic67");
    controller().showHelpAnchor("helpCategory14");
    click("helpBack");
    EXPECT_TRUE(isInSight("helpTopic67"));
    click("helpForward");
    EXPECT_TRUE(isInSight("helpCategory14"));

    // The words of recipes, in the entry of an action and on a page of their own.
    const auto text = [&] { return find<QTextBrowser>("helpBrowser")->toPlainText(); };
    controller().showHelpAnchor("action:Insert number at position");
    EXPECT_TRUE(text().contains("In recipes: number at Number\n"));
    EXPECT_TRUE(text().contains("Digits (digits=)\n"));
    EXPECT_TRUE(text().contains("Whole name (whole)"));
    controller().showHelpAnchor("verb:cut");
    EXPECT_TRUE(text().contains("cut [from Position | before/after \"Text\"] to Position | before/after "
                                "\"Text\" | for Characters: "));
    EXPECT_TRUE(text().contains("sub, substitute, change"));

    type("helpFilter", "droplet silent");
    auto* contents = find<QListWidget>("helpContents");
    EXPECT_EQ(
        std::ranges::count(contents->findItems("*", Qt::MatchWildcard), false, &QListWidgetItem::isHidden),
        1);
}

TEST_F(DialogTests, AnswerAlertsByWhicheverWayTheyAreClosed) {
    start();
    Alert alert;
    alert.buttons = {"First", "Second"};
    alert.helpAnchor = "helpTopic7";
    const std::pair<void (*)(QMessageBox&), std::size_t> ways[] = {
        {[](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }, 0},
        {[](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }, 1},
        {[](QMessageBox& box) { box.close(); }, 1},
        {[](QMessageBox& box) { box.buttons().at(1)->click(); }, 1},
    };
    for (const auto& [close, button] : ways) {
        std::optional<AlertAnswer> given;
        Dialogs::showAlert(&application->window(), alert, [&](AlertAnswer answer) { given = answer; });
        auto* box = find<QMessageBox>("alert");
        EXPECT_EQ(box->findChild<QCheckBox*>("suppressionBox"), nullptr);
        // The help opens beside it.
        box->button(QMessageBox::Help)->click();
        EXPECT_TRUE(find("helpWindow")->isVisible());
        EXPECT_FALSE(given);
        close(*box);
        waitUntilGone("alert");
        EXPECT_EQ(given.value().button, button);
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

using SupportServicesTest = WindowFixture;

TEST_F(SupportServicesTest, PresetsAndDropletsOfTheOldVersionAreLocated) {
    start();
    folder.write("old/Presets/Holiday.mv8preset.plist");
    const PropertyDictionary droplet{{"default location", u"/Applications/Tavrin 8.app"}};
    for (const std::string name : {"one.app", "two.app"}) {
        folder.write(name + "/Contents/Resources/Icon.icns");
        folder.write(name + "/Contents/Resources/Settings.plist",
                     PropertyList::toXml(PropertyDictionary{{"Droplet Settings", droplet}}));
    }
    folder.write("two.desktop", "[Desktop Entry]\nX-Tavrin-Droplet=/gone/two.app\n");
    const std::string presets = "Presets found at " + folder.path("old") + " were successfully migrated.";
    const struct {
        const char *command, *dialog, *chosen;
        std::string told;
    } cases[] = {{"migratePresetsFromFolder", "locateFolderDialog", "old", presets},
                 {"migrateDroplets", "locateDropletsDialog", "one.app", "Success"},
                 {"migrateDroplets", "locateDropletsDialog", "two.desktop", "Success"}};
    for (const auto& [command, name, chosen, told] : cases) {
        trigger(command);
        auto* dialog = waitFor<QFileDialog>(name);
        const QString path = QString::fromStdString(folder.path(chosen));
        dialog->setDirectory(QString::fromStdString(folder.path()));
        waitUntil("the entry is listed", [dialog, path] {
            dialog->selectFile(path);
            return dialog->selectedFiles().contains(path);
        });
        static_cast<QDialog*>(dialog)->accept();
        waitForBar(told);
        waitUntilGone(name);
    }
    EXPECT_EQ(controller().presetsManager().count(), 1U);
}

TEST_F(SupportServicesTest, UpdatesAreOffUntilAFeedIsNamed) {
    const std::string feed =
        "<rss xmlns:s='f'><channel><item><enclosure s:version='9.9'/></item></channel></rss>";
    start();
    QAction& check = command("checkForUpdates");
    EXPECT_FALSE(check.isVisible());
    trigger("showPreferencesDialog");
    auto* contents = find<QListWidget>("preferencesContents");
    contents->setCurrentItem(contents->findItems("Updates", Qt::MatchExactly).value(0));
    const auto* now = find<QPushButton>("checkForUpdatesNow");
    EXPECT_FALSE(now->isEnabled());
    auto* address = find<QLineEdit>("SUFeedURL");
    for (const bool isGood : {false, true}) {
        type("SUFeedURL", isGood ? QString::fromStdString(folder.write("feed.xml", feed)) : "feed.xml");
        address->editingFinished();
        EXPECT_EQ(find("feedProblem")->isHidden(), isGood);
        EXPECT_EQ(now->isEnabled(), isGood);
    }
    EXPECT_TRUE(check.isVisible());
    click("checkForUpdatesNow");
    waitForBar("Tavrin 9.9 is available.");

    auto* interval = find<QComboBox>("SUScheduledCheckInterval");
    EXPECT_EQ(interval->currentText(), "every day");
    interval->setCurrentIndex(interval->findText("never"));
    interval->activated(interval->currentIndex());
    EXPECT_EQ(UserDefaults::sharedInstance().integerForKey("SUScheduledCheckInterval"), 0);

    // What is still being typed counts when the window goes.
    address->clear();
    find<QDialog>("preferencesWindow")->reject();
    waitUntilGone("preferencesWindow");
    EXPECT_FALSE(UserDefaults::sharedInstance().objectForKey("SUFeedURL"));
    EXPECT_FALSE(check.isVisible());
}

// Over a user's folders, with the file managers that are among the programs.
TEST_F(SupportServicesTest, FileManagersGetEntriesAndLoseThem) {
    const TemporaryFolder user;
    const Variable userData("XDG_DATA_HOME", user.path("data").c_str());
    const Variable configuration("XDG_CONFIG_HOME", user.path("config").c_str());
    const Variable sharedData("XDG_DATA_DIRS", user.path("shared").c_str());
    const Variable programs("PATH", user.path("bin").c_str());
    for (const char* fileManager : {"thunar", "nautilus", "dolphin"})
        ASSERT_EQ(::chmod(user.write(std::string("bin/") + fileManager).c_str(), 0755), 0);
    user.write("shared/kio/servicemenus/net.calderwick.tavrin.desktop");
    user.write("config/Thunar/uca.xml", "<actions>");
    FileManagerMenus menus("/opt/bin/tavrin");
    FileManagerMenus::setSharedInstance(&menus);
    start();
    trigger("showPreferencesDialog");
    (void)waitFor("preferencesWindow");
    const auto state = [this](const char* name) { return find<QLabel>(name)->text().toStdString(); };
    EXPECT_EQ(findWidget("menuStateOfNemo"), nullptr);
    EXPECT_EQ(state("menuStateOfNautilus"), "no entry");
    EXPECT_EQ(state("menuStateOfDolphin"), "in the menu, for all users");
    EXPECT_EQ(state("menuStateOfThunar"), "not Tavrin's to change");
    EXPECT_FALSE(find("removeFromMenus")->isEnabled());
    find<QPushButton>("forceServicesMenuUpdate")->click();
    EXPECT_THAT(state("menuFailures"), HasSubstr("uca.xml\" is left alone: it is no list of actions"));
    EXPECT_EQ(state("menuStateOfNautilus"), "in the menu");
    user.remove("config/Thunar/uca.xml");
    find<QPushButton>("forceServicesMenuUpdate")->click();
    EXPECT_EQ(state("menuStateOfThunar"), "in the menu");
    EXPECT_FALSE(find("forceServicesMenuUpdate")->isEnabled());
    find<QPushButton>("removeFromMenus")->click();
    EXPECT_EQ(state("menuStateOfThunar"), "no entry");
}

TEST_F(SupportServicesTest, FetchesNoMoreThanItShould) {
    const std::string end = "Content-Length: 0\r\n\r\n";
    // Each under its number: two that are good, those that are not, and one that is left hanging.
    const std::string answers[] = {"200 OK\r\nContent-Length: 5\r\n\r\nhello",
                                   "302 Found\r\nLocation: /0\r\n" + end,
                                   "302 Found\r\nLocation: /2\r\n" + end,
                                   "302 Found\r\nLocation: file:///etc/passwd\r\n" + end,
                                   "404 Not Found\r\n" + end,
                                   "204 No Content\r\n\r\n",
                                   "200 OK\r\nContent-Length: 2000\r\n\r\n" + std::string(2000, 'x'),
                                   "200 OK\r\n\r\n" + std::string(100'000, 'x'),
                                   ""};
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    QObject::connect(&server, &QTcpServer::newConnection, [&] {
        QTcpSocket* socket = server.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, [socket, &answers] {
            const std::string& answer = answers[socket->readAll().split(' ').value(1).mid(1).toInt()];
            if (answer.empty())
                return;
            socket->write(QByteArray::fromStdString("HTTP/1.1 " + answer));
            socket->disconnectFromHost();
        });
    });
    AddressFetcher fetcher(std::chrono::milliseconds(1500));
    for (std::size_t i = 0; i < std::size(answers); ++i) {
        const QString address = QString("http://127.0.0.1:%1/%2").arg(server.serverPort()).arg(i);
        std::optional<FetchedAddress> answer;
        fetcher.fetch(address.toStdString(), 1000, [&](FetchedAddress got) { answer = std::move(got); });
        waitUntil("there is an answer", [&answer] { return answer.has_value(); });
        EXPECT_EQ(answer->bytes, i < 2 ? std::optional<std::string>("hello") : std::nullopt) << i;
        EXPECT_EQ(answer->error.empty(), i < 2) << i;
    }
}

TEST_F(SupportServicesTest, AStackFillsItsScrollAreaAndFollowsItsViews) {
    QScrollArea area;
    area.setFrameShape(QFrame::NoFrame);
    area.setWidgetResizable(true);
    auto* stack = new StackedView;
    QWidget top, flexible, bottom;
    top.setFixedHeight(40);
    bottom.setFixedHeight(60);
    stack->addViewAtBottom(&top);
    stack->addFlexiView(&flexible, 100);
    stack->addViewAtBottom(&bottom);
    stack->addViewAtBottom(&top);
    EXPECT_EQ(stack->views(), (std::vector<QWidget*>{&top, &flexible, &bottom}));
    area.setWidget(stack);
    area.resize(200, 300);
    area.show();
    waitUntil("the first layout", [&] { return flexible.geometry() == QRect(0, 40, 200, 192); });
    EXPECT_EQ(bottom.geometry(), QRect(0, 232, 200, 60));
    top.setFixedHeight(150);
    waitUntil("room for the taller view",
              [&] { return stack->height() == 310 && flexible.y() == 150 && flexible.height() == 100; });
    stack->removeView(&bottom);
    waitUntil("the space of the removed view", [&] { return flexible.height() == 142; });
    EXPECT_EQ(bottom.parent(), nullptr);
}

} // namespace
} // namespace tavrin::test
