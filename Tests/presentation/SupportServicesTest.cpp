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

using ::testing::HasSubstr;
using ::testing::StartsWith;

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
    const std::string presets = "Presets found at " + folder.path("old") + " were successfully migrated.|";
    const struct {
        const char *command, *dialog, *chosen;
        std::string told;
    } cases[] = {{"migratePresetsFromFolder", "locateFolderDialog", "old", presets},
                 {"migrateDroplets", "locateDropletsDialog", "one.app", "Success|"},
                 {"migrateDroplets", "locateDropletsDialog", "two.desktop", "Success|"}};
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
        EXPECT_THAT(close("alert"), StartsWith(told));
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
    EXPECT_THAT(close("alert"), StartsWith("Tavrin 9.9 is available.|"));

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
