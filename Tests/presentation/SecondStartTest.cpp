#include "presentation/UsersProgram.h"
#include "presentation/start/BusLink.h"
#include "presentation/start/SocketLink.h"

#include <fmt/format.h>

namespace tavrin::test {

namespace {

enum class Way { bus, socket };

/// A session of its own, with or without a bus.
class SecondStart : public ::testing::TestWithParam<Way>, protected UsersProgram {
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
    std::vector<std::string> arguments{".", "--"};
    arguments.insert(arguments.end(), paths.begin(), paths.end());
    EXPECT_EQ(statusOf(startWithBytes(arguments)), 0);
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

INSTANTIATE_TEST_SUITE_P(Ways, SecondStart, ::testing::Values(Way::bus, Way::socket),
                         [](const auto& each) { return each.param == Way::bus ? "Bus" : "Socket"; });

} // namespace

} // namespace tavrin::test
