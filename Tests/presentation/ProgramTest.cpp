#include "common/Recipes.h"
#include "common/Testing.h"
#include "documents/DropletBundleWriter.h"
#include "documents/DropletHandOver.h"
#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"
#include "presentation/WindowFixture.h"
#include "presentation/start/BusLink.h"
#include "presentation/start/SocketLink.h"

#include <QtTest>

namespace tavrin::test {
namespace {

// The program as users and file managers start it.

using namespace ::testing;

/// Starts of the real program, as processes of a user who has nothing yet, in a session without a bus.
class UsersProgram {
  public:
    UsersProgram() { QFile::setPermissions(home.makeFolder("run").c_str(), QFile::Permissions(0x7000)); }
    ~UsersProgram() {
        for (const auto& process : processes) {
            process->kill();
            process->waitForFinished(patience);
        }
    }

    QProcess& start(const std::vector<std::string>& arguments, const char* platform = "offscreen") {
        QStringList list;
        for (const std::string& argument : arguments)
            list.append(QFile::decodeName(argument.c_str()));
        return launch(TAVRIN_PROGRAM, list, platform);
    }
    /// Lets this process go on meanwhile; -1 where the program was ended by force, or took too long.
    static int statusOf(const QProcess& process) {
        const bool hasEnded = waitFor([&] { return process.state() == QProcess::NotRunning; });
        return hasEnded && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    static bool waitFor(const std::function<bool()>& condition) {
        return QTest::qWaitFor(condition, patience);
    }

    static constexpr int patience = 20000; // milliseconds
    TemporaryFolder home;
    std::string bus = "unix:path=/nowhere/bus";

    QProcess& launch(const QString& program, const QStringList& arguments,
                     const char* platform = "offscreen") {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment;
        for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS", "PATH"})
            if (const char* value = std::getenv(name))
                environment.insert(name, value);
        environment.insert("QT_QPA_PLATFORM", platform);
        environment.insert("QT_LOGGING_RULES", "*=false");
        environment.insert("DBUS_SESSION_BUS_ADDRESS", QString::fromStdString(bus));
        environment.insert("XDG_RUNTIME_DIR", QString::fromStdString(home.path("run")));
        for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
            environment.insert(name, QString::fromStdString(home.path()));
        process->setProcessEnvironment(environment);
        process->start(program, arguments);
        EXPECT_TRUE(process->waitForStarted(patience));
        processes.push_back(std::move(process));
        return *processes.back();
    }

  private:
    std::vector<std::unique_ptr<QProcess>> processes;
};

/// Droplets as processes of the real program, for a user of their own.
class DropletStart : public Test, protected UsersProgram {
  protected:
    /// A droplet on the desktop that adds `text` to names.
    std::string makeDroplet(const std::string& name, std::u16string text,
                            PropertyDictionary settings = {{"silentDroplet", 1}}) {
        std::string path = home.makeFolder("desktop") + "/" + name + ".app";
        EXPECT_EQ(DropletBundleWriter(TAVRIN_PROGRAM, false)
                      .writeDropletWithDictionary(dropletThatAdds(text, std::move(settings)), path),
                  std::nullopt);
        return path;
    }
    std::optional<PropertyValue> stored(const char* key) const {
        return UserDefaults(home.path("net.calderwick.tvrn9.plist")).objectForKey(key);
    }
};

TEST_F(DropletStart, RenamesWhatIsDroppedAndEnds) {
    const std::string droplet = makeDroplet("It's 50% \"$HOME\" `x`", u"X");
    // Written by a newer version: not a droplet's to touch.
    const std::string settings = PropertyList::toXml(
        PropertyDictionary{{"firstLaunchVersion", 90000}, {"precious", u"kept"}, {"interactiveMode", u"?"}});
    home.write("net.calderwick.tvrn9.plist", settings);
    std::vector<std::string> arguments{"--droplet", droplet, "--launcher="};
    for (const char* name : {"in/a b", "in/--help", "in/say \"hi\" 100%F", "in/two\nlines", "in/\xC3\xA4"})
        arguments.push_back(home.write(name));
    QProcess& process = start(arguments);
    EXPECT_EQ(statusOf(process), 0) << process.readAllStandardError().toStdString();
    EXPECT_THAT(home.names("in"),
                ElementsAre("--helpX", "a bX", "say \"hi\" 100%FX", "two\nlinesX", "\xC3\xA4X"));
    EXPECT_EQ(home.read("net.calderwick.tvrn9.plist"), settings);
    EXPECT_FALSE(home.kind("net.calderwick.tvrn9.plist.saved-90000"));
}

TEST_F(DropletStart, TellsWhatKeepsItFromRunning) {
    const std::string good = makeDroplet("Good", u"X", {{"silentDroplet", 0}});
    const std::string broken = makeDroplet("Broken", u"X");
    home.write("desktop/Broken.app/Contents/Resources/Settings.plist", "<plist><dict>");
    const std::string file = home.write("in/a");
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--droplet", home.path("desktop/None.app"), "--launcher=", file}, "The droplet is gone."},
        {{"--droplet", home.path("desktop/None.app")}, "The droplet is gone."},
        {{"--droplet", broken, "--launcher=", file}, "can't be used."},
        {{"--droplet", good, "--launcher=", home.path("in/gone")}, "are not there."}};
    for (const auto& [arguments, message] : cases) {
        SCOPED_TRACE(message);
        QProcess& process = start(arguments);
        QByteArray told;
        // Its message stays open until the user closes it.
        EXPECT_TRUE(waitFor([&] { return (told += process.readAllStandardError()).contains(message); }))
            << told.toStdString();
        EXPECT_EQ(process.state(), QProcess::Running);
        process.terminate();
        EXPECT_TRUE(process.waitForFinished(patience));
        QProcess& withoutDisplay = start(arguments, "");
        EXPECT_EQ(statusOf(withoutDisplay), 2);
        EXPECT_THAT(withoutDisplay.readAllStandardError().toStdString(), HasSubstr("there is no display"));
    }
    EXPECT_EQ(statusOf(start({"--droplet"})), 2);
    EXPECT_EQ(stored("composite action"), std::nullopt);
    EXPECT_EQ(stored("actions"), std::nullopt);
    EXPECT_THAT(home.names("in"), ElementsAre("a"));
}

TEST_F(DropletStart, PassesOverFilesThatAreGoneAndTellsOfThem) {
    const std::string silent = makeDroplet("A", u"X");
    QProcess& nothingLeft = start({"--droplet", silent, "--launcher=", home.path("in/gone")});
    EXPECT_EQ(statusOf(nothingLeft), 2);
    EXPECT_THAT(nothingLeft.readAllStandardError().toStdString(),
                HasSubstr("The dropped files are not there."));
    const std::string telling = makeDroplet("B", u"Y", {{"interactiveMode", 0}, {"showSummary", 0}});
    for (const std::string& droplet : {silent, telling}) {
        QProcess& process = start({"--droplet", droplet, home.path("in/gone"), home.write("in/a")});
        if (droplet == telling) {
            // What it tells stays on the screen after the run.
            EXPECT_TRUE(waitFor([&] { return home.kind("in/aY").has_value(); }));
            EXPECT_FALSE(process.waitForFinished(300));
            process.terminate();
        }
        EXPECT_EQ(statusOf(process), 0);
        EXPECT_THAT(process.readAllStandardError().toStdString(), HasSubstr("in/gone"));
    }
    EXPECT_THAT(home.names("in"), ElementsAre("aX", "aY"));
}

TEST_F(DropletStart, RunsBesideTheWindowAndOtherDroplets) {
    QProcess& window = start({});
    ASSERT_TRUE(waitFor([&] { return stored("firstLaunchVersion").has_value(); }));
    const std::string x = makeDroplet("X", u"X");
    makeDroplet("Y", u"Y");
    QProcess& edited = start({"--droplet", x});
    // The bundle can stand beside the launcher; so a path that a file manager has torn apart does no harm.
    std::vector<std::string> forX{"--droplet", "/d/say \\hi", "there\\.app",
                                  "--launcher=" + home.path("desktop/X.desktop")};
    std::vector<std::string> forY{"--launcher=file://" + home.path("desktop/Y.desktop")};
    for (int i = 0; i < 500; ++i) {
        forX.push_back(home.write(fmt::format("x/{:03}", i)));
        forY.push_back(home.write(fmt::format("y/{:03}", i)));
    }
    QProcess& first = start(forX);
    QProcess& second = start(forY);
    EXPECT_EQ(statusOf(first), 0);
    EXPECT_EQ(statusOf(second), 0);
    EXPECT_THAT(home.names("x"), AllOf(SizeIs(500), Each(EndsWith("X"))));
    EXPECT_THAT(home.names("y"), AllOf(SizeIs(500), Each(EndsWith("Y"))));
    EXPECT_EQ(window.state(), QProcess::Running);
    EXPECT_EQ(edited.state(), QProcess::Running);
    EXPECT_EQ(stored("droplet settings"), std::nullopt);
}

enum class Way { bus, socket };

/// A session of its own, with or without a bus.
class SecondStart : public TestWithParam<Way>, protected UsersProgram {
  protected:
    SecondStart() {
        if (GetParam() == Way::bus) {
            daemon.start("dbus-daemon", {"--session", "--print-address", "--nofork"});
            EXPECT_TRUE(daemon.waitForReadyRead(patience)) << "no bus: " << qPrintable(daemon.errorString());
            bus = daemon.readLine().trimmed().toStdString();
        }
    }
    ~SecondStart() override {
        link.reset();
        QDBusConnection::disconnectFromBus("test");
        daemon.kill();
        daemon.waitForFinished();
    }

    /// Makes this process the window of the session.
    void becomeWindow() {
        const QString address = QString::fromStdString(bus);
        link = GetParam() == Way::socket
                   ? std::unique_ptr<WindowLink>(std::make_unique<SocketLink>(home.path("run")))
                   : std::make_unique<BusLink>(QDBusConnection::connectToBus(address, "test"));
        ASSERT_EQ(link->join({}), WindowLink::Role::window);
        link->setOpen([this](const std::vector<std::string>& paths) { opened.push_back(paths); });
    }

    QProcess daemon;
    std::unique_ptr<WindowLink> link;
    std::vector<std::vector<std::string>> opened;
};

TEST_P(SecondStart, HandsOverAllPathsByteForByte) {
    becomeWindow();
    std::vector<std::string> paths{"/nowhere/caf\xE9 50%.txt", "/nowhere/two\nlines",
                                   "/nowhere/\u202E#?&;=", "--help"};
    for (int i = 0; i < 20000; ++i)
        paths.push_back(fmt::format("/nowhere/a folder/IMG_{:06}.JPG", i));
    // Qt can't pass on what is not UTF-8.
    std::string arguments(".\0--\0", 5);
    for (const std::string& path : paths)
        arguments.append(path).append(1, '\0');
    const std::string file = home.write("arguments", arguments);
    EXPECT_EQ(statusOf(launch("xargs", {"-0", "-x", "-s", "1500000", "-a", file.c_str(), TAVRIN_PROGRAM})),
              0);
    const std::string folder = std::filesystem::canonical(std::filesystem::current_path()).string();
    paths.insert(paths.begin(), folder);
    paths[4] = folder + "/--help";
    EXPECT_EQ(statusOf(start({})), 0);
    ASSERT_EQ(opened.size(), 2U);
    EXPECT_TRUE(opened[0] == paths) << opened[0].size() << " of " << paths.size();
    EXPECT_TRUE(opened[1].empty());
}

TEST_P(SecondStart, MakesOneWindowOfStartsAtTheSameMoment) {
    const auto hasEnded = [](const QProcess& process) { return process.state() == QProcess::NotRunning; };
    // The second time beside what a window has left behind that was ended by force.
    for (int i = 0; i < 2; ++i) {
        QProcess& one = start({"/a"});
        QProcess& other = start({"/b"});
        EXPECT_TRUE(waitFor([&] { return hasEnded(one) || hasEnded(other); }));
        QProcess& window = hasEnded(one) ? other : one;
        EXPECT_EQ(statusOf(hasEnded(one) ? one : other), 0);
        EXPECT_EQ(statusOf(start({"/c"})), 0);
        EXPECT_FALSE(hasEnded(window));
        window.kill();
        EXPECT_EQ(statusOf(window), -1);
    }
}

TEST_P(SecondStart, TellsWhatTheCommandLineCannotMean) {
    const std::pair<const char*, int> cases[] = {{"--help", 0}, {"-h", 0},    {"--version", 0},
                                                 {"--nope", 2}, {"-nope", 2}, {"--help=1", 2}};
    for (const auto& [argument, status] : cases)
        EXPECT_EQ(statusOf(start({argument})), status) << argument;
}

INSTANTIATE_TEST_SUITE_P(Ways, SecondStart, Values(Way::bus, Way::socket),
                         [](const auto& each) { return each.param == Way::bus ? "Bus" : "Socket"; });

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
    waitFor("dropletEditModeDialog");
    click("noticeOk");
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
    const std::string stopped = "No file names were changed. 2 items still have their old names.";
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
        EXPECT_EQ(end.told, stops ? stopped : "2 file names were changed.");
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
            click("noticeOk");
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
