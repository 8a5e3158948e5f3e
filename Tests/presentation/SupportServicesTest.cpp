#include "documents/PresetsManager.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/AddressFetcher.h"
#include "presentation/MainWindow.h"
#include "presentation/WindowFixture.h"
#include "presentation/settings/StackedView.h"
#include "shell/MainController.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QTcpServer>
#include <QTcpSocket>

namespace tavrin::test {

namespace {

using ::testing::HasSubstr;

class SupportServicesTest : public WindowFixture {
  protected:
    std::string alertTitle() {
        auto* box = waitFor<QMessageBox>("alert");
        const std::string title = box->text().toStdString();
        box->defaultButton()->click();
        waitUntilGone("alert");
        return title;
    }
    static std::string feed(const std::string& version) {
        return "<rss xmlns:s='urn:feed'><channel><item><enclosure s:version='" + version +
               "'/></item></channel></rss>";
    }
};

TEST_F(SupportServicesTest, PresetsComeFromAChosenFolder) {
    start();
    (void)folder.write("old/Presets/Holiday.mv8preset.plist");
    command("migratePresetsFromFolder").trigger();
    auto* dialog = waitFor<QFileDialog>("locateFolderDialog");
    EXPECT_TRUE(find<QLabel>("locateMessage")->isVisible());
    dialog->setDirectory(QString::fromStdString(folder.path("old")));
    dialog->selectFile(QString::fromStdString(folder.path("old")));
    static_cast<QDialog*>(dialog)->accept();
    EXPECT_EQ(alertTitle(), "Presets found at " + folder.path("old") + " were successfully migrated.");
    EXPECT_EQ(application->controller().presetsManager().count(), 1u);
}

TEST_F(SupportServicesTest, DropletsAreChosenAsBundlesAndAsLaunchers) {
    start();
    for (const char* name : {"one.app", "two.app"}) {
        const PropertyDictionary droplet{{"default location", u"/Applications/Tavrin 8.app"}};
        (void)folder.write(std::string(name) + "/Contents/Resources/Icon.icns");
        (void)folder.write(std::string(name) + "/Contents/Resources/Settings.plist",
                           PropertyList::toXml(PropertyDictionary{{"Droplet Settings", droplet}}));
    }
    (void)folder.write("two.desktop", "[Desktop Entry]\nX-Tavrin-Droplet=/gone/two.app\n");
    for (const char* name : {"one.app", "two.desktop"}) {
        command("migrateDroplets").trigger();
        auto* dialog = waitFor<QFileDialog>("locateDropletsDialog");
        EXPECT_EQ(dialog->windowTitle(), "Locate Droplets");
        EXPECT_EQ(dialog->labelText(QFileDialog::Accept), "Migrate");
        const QString path = QString::fromStdString(folder.path(name));
        dialog->setDirectory(QString::fromStdString(folder.path()));
        waitUntil("the entry to be listed", [dialog, path] {
            dialog->selectFile(path);
            return dialog->selectedFiles().contains(path);
        });
        static_cast<QDialog*>(dialog)->accept();
        EXPECT_EQ(alertTitle(), "Success") << name;
        waitUntilGone("locateDropletsDialog");
    }
    for (const char* name : {"one", "two"})
        EXPECT_THAT(folder.read(std::string(name) + ".app/Contents/Resources/Settings.plist"),
                    HasSubstr("Tavrin 9.app"));
}

TEST_F(SupportServicesTest, UpdatesAreOffUntilAFeedIsNamed) {
    start();
    EXPECT_FALSE(command("checkForUpdates").isVisible());
    command("showPreferencesDialog").trigger();
    auto* contents = find<QListWidget>("preferencesContents");
    contents->setCurrentItem(contents->findItems("Updates", Qt::MatchExactly).value(0));
    EXPECT_FALSE(find<QPushButton>("checkForUpdatesNow")->isEnabled());
    type("SUFeedURL", "feed.xml");
    find<QLineEdit>("SUFeedURL")->editingFinished();
    EXPECT_FALSE(find("feedProblem")->isHidden());
    EXPECT_FALSE(find<QPushButton>("checkForUpdatesNow")->isEnabled());

    type("SUFeedURL", QString::fromStdString(folder.write("feed.xml", feed("9.9"))));
    find<QLineEdit>("SUFeedURL")->editingFinished();
    EXPECT_TRUE(find("feedProblem")->isHidden());
    EXPECT_TRUE(command("checkForUpdates").isVisible());
    find<QPushButton>("checkForUpdatesNow")->click();
    EXPECT_EQ(alertTitle(), "Tavrin 9.9 is available.");

    auto* interval = find<QComboBox>("SUScheduledCheckInterval");
    EXPECT_EQ(interval->currentText(), "every day");
    interval->setCurrentIndex(interval->findText("never"));
    interval->activated(interval->currentIndex());
    EXPECT_EQ(UserDefaults::sharedInstance().integerForKey("SUScheduledCheckInterval"), 0);

    // What is still being typed counts when the window goes.
    find<QLineEdit>("SUFeedURL")->clear();
    find<QDialog>("preferencesWindow")->reject();
    waitUntilGone("preferencesWindow");
    EXPECT_FALSE(UserDefaults::sharedInstance().objectForKey("SUFeedURL"));
    EXPECT_FALSE(command("checkForUpdates").isVisible());
}

/// Answers each request with what stands under its path; one without an answer is left hanging.
class Server {
  public:
    Server() {
        server.listen(QHostAddress::LocalHost);
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this] {
            QTcpSocket* socket = server.nextPendingConnection();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                const QList<QByteArray> words = socket->readAll().split(' ');
                const auto answer = answers.find(words.value(1).toStdString());
                if (answer == answers.end())
                    return;
                socket->write(QByteArray::fromStdString("HTTP/1.1 " + answer->second));
                socket->disconnectFromHost();
            });
        });
    }
    [[nodiscard]] std::string address(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(server.serverPort()) + path;
    }
    std::map<std::string, std::string> answers;

  private:
    QTcpServer server;
};

TEST_F(SupportServicesTest, FetchesNoMoreThanItShould) {
    Server server;
    const std::string end = "Content-Length: 0\r\n\r\n";
    server.answers = {
        {"/feed", "200 OK\r\nContent-Length: 5\r\n\r\nhello"},
        {"/moved", "302 Found\r\nLocation: /feed\r\n" + end},
        {"/round", "302 Found\r\nLocation: /round\r\n" + end},
        {"/tofile", "302 Found\r\nLocation: file:///etc/passwd\r\n" + end},
        {"/none", "404 Not Found\r\n" + end},
        {"/empty", "204 No Content\r\n\r\n"},
        {"/toolong", "200 OK\r\nContent-Length: 2000\r\n\r\n" + std::string(2000, 'x')},
        {"/endless", "200 OK\r\n\r\n" + std::string(100'000, 'x')},
    };
    AddressFetcher fetcher(std::chrono::milliseconds(1500));
    const std::vector<std::pair<const char*, std::optional<std::string>>> cases{
        {"/feed", "hello"},         {"/moved", "hello"},        {"/round", std::nullopt},
        {"/tofile", std::nullopt},  {"/none", std::nullopt},    {"/empty", std::nullopt},
        {"/toolong", std::nullopt}, {"/endless", std::nullopt}, {"/hanging", std::nullopt}};
    for (const auto& [path, bytes] : cases) {
        std::optional<FetchedAddress> answer;
        fetcher.fetch(server.address(path), 1000, [&answer](FetchedAddress got) { answer = std::move(got); });
        waitUntil(path, [&answer] { return answer.has_value(); });
        EXPECT_EQ(answer->bytes, bytes) << path;
        EXPECT_NE(answer->error.empty(), !bytes) << path;
    }
}

TEST_F(SupportServicesTest, AStackFillsItsScrollAreaAndFollowsItsViews) {
    QScrollArea area;
    area.setFrameShape(QFrame::NoFrame);
    area.setWidgetResizable(true);
    auto* stack = new StackedView;
    auto* top = new QWidget;
    auto* flexible = new QWidget;
    auto* bottom = new QWidget;
    top->setFixedHeight(40);
    bottom->setFixedHeight(60);
    stack->addViewAtBottom(top);
    stack->addFlexiView(flexible, 100);
    stack->addViewAtBottom(bottom);
    stack->addViewAtBottom(top);
    EXPECT_EQ(stack->views(), (std::vector<QWidget*>{top, flexible, bottom}));
    area.setWidget(stack);
    area.resize(200, 300);
    area.show();
    waitUntil("the first layout", [&] { return flexible->geometry() == QRect(0, 40, 200, 192); });
    EXPECT_EQ(bottom->geometry(), QRect(0, 232, 200, 60));
    top->setFixedHeight(150);
    waitUntil("room for the taller view",
              [&] { return stack->height() == 310 && flexible->y() == 150 && flexible->height() == 100; });
    stack->removeView(bottom);
    waitUntil("the space of the removed view", [&] { return flexible->height() == 142; });
    EXPECT_EQ(bottom->parent(), nullptr);
    delete bottom;
}

} // namespace

} // namespace tavrin::test
