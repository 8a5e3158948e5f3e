#include "common/TemporaryFolder.h"
#include "presentation/start/BusLink.h"
#include "presentation/start/SocketLink.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QProcess>
#include <QTest>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrin::test {

namespace {

constexpr int patience = 20000; // milliseconds

/// A start of the program that is ended with the test.
class Start {
  public:
    Start(const std::vector<std::string>& arguments, const std::vector<std::string>& environment) {
        std::vector<std::string> words{TAVRIN_PROGRAM};
        words.insert(words.end(), arguments.begin(), arguments.end());
        posix_spawn_file_actions_t quietly;
        posix_spawn_file_actions_init(&quietly);
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
            posix_spawn_file_actions_addopen(&quietly, stream, "/dev/null", O_WRONLY, 0);
        EXPECT_EQ(posix_spawn(&process, TAVRIN_PROGRAM, &quietly, nullptr, pointers(words).data(),
                              pointers(environment).data()),
                  0);
        posix_spawn_file_actions_destroy(&quietly);
    }
    ~Start() {
        if (process > 0 && !hasEnded())
            kill();
    }
    Start(const Start&) = delete;
    Start& operator=(const Start&) = delete;

    [[nodiscard]] bool hasEnded() {
        if (!status) {
            int result = 0;
            if (::waitpid(process, &result, WNOHANG) == process)
                status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
        }
        return status.has_value();
    }
    /// What the program told its caller, once it has ended; absent when that took too long.
    [[nodiscard]] std::optional<int> exitStatus() {
        static_cast<void>(QTest::qWaitFor([this] { return hasEnded(); }, patience));
        return status;
    }
    void kill() {
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
        status = -1;
    }

  private:
    static std::vector<char*> pointers(const std::vector<std::string>& words) {
        std::vector<char*> result;
        for (const std::string& word : words)
            result.push_back(const_cast<char*>(word.c_str()));
        result.push_back(nullptr);
        return result;
    }

    pid_t process = -1;
    std::optional<int> status;
};

enum class Way { bus, socket };

/// A session of its own, with or without a bus.
class SecondStart : public ::testing::TestWithParam<Way> {
  protected:
    SecondStart() {
        std::filesystem::permissions(home.makeFolder("run"), std::filesystem::perms::owner_all);
        if (GetParam() == Way::bus) {
            daemon.start("dbus-daemon", {"--session", "--print-address", "--nofork"});
            EXPECT_TRUE(daemon.waitForReadyRead(patience)) << "no bus: " << qPrintable(daemon.errorString());
            address = daemon.readLine().trimmed().toStdString();
        }
    }
    ~SecondStart() override {
        link.reset();
        QDBusConnection::disconnectFromBus("test");
        daemon.kill();
        daemon.waitForFinished();
    }

    std::unique_ptr<Start> start(const std::vector<std::string>& arguments) const {
        std::vector<std::string> environment{"QT_QPA_PLATFORM=offscreen", "QT_LOGGING_RULES=*=false",
                                             "DBUS_SESSION_BUS_ADDRESS=" + address,
                                             "XDG_RUNTIME_DIR=" + home.path("run")};
        for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
            environment.push_back(fmt::format("{}={}", name, home.path()));
        for (const char* name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"})
            if (const char* value = std::getenv(name))
                environment.push_back(fmt::format("{}={}", name, value));
        return std::make_unique<Start>(arguments, environment);
    }

    /// Makes this process the window of the session.
    void becomeWindow() {
        if (GetParam() == Way::bus)
            link = std::make_unique<BusLink>(
                QDBusConnection::connectToBus(QString::fromStdString(address), "test"));
        else
            link = std::make_unique<SocketLink>(home.path("run"));
        ASSERT_EQ(link->join({}), WindowLink::Role::window);
        link->setOpen([this](const std::vector<std::string>& paths) { opened.push_back(paths); });
    }

    TemporaryFolder home;
    QProcess daemon;
    std::string address = "unix:path=/nowhere/bus";
    std::unique_ptr<WindowLink> link;
    std::vector<std::vector<std::string>> opened;
};

TEST_P(SecondStart, HandsOverAllPathsByteForByte) {
    becomeWindow();
    std::vector<std::string> paths{"/nowhere/caf\xE9 50%.txt", "/nowhere/two\nlines",
                                   "/nowhere/\u202E#?&;=", "--help"};
    for (int i = 0; i < 20000; ++i)
        paths.push_back(fmt::format("/nowhere/a folder/IMG_{:06}.JPG", i));
    std::vector<std::string> arguments{"."};
    arguments.push_back("--");
    arguments.insert(arguments.end(), paths.begin(), paths.end());
    EXPECT_EQ(start(arguments)->exitStatus(), 0);
    const std::string folder = std::filesystem::canonical(std::filesystem::current_path()).string();
    paths.insert(paths.begin(), folder);
    paths[4] = folder + "/--help";
    ASSERT_EQ(opened.size(), 1U);
    EXPECT_TRUE(opened.front() == paths) << opened.front().size() << " of " << paths.size();
    EXPECT_EQ(start({})->exitStatus(), 0);
    ASSERT_EQ(opened.size(), 2U);
    EXPECT_TRUE(opened.back().empty());
}

/// Of two starts one ends well; gives the other.
std::unique_ptr<Start> windowOf(std::unique_ptr<Start> one, std::unique_ptr<Start> other) {
    EXPECT_TRUE(QTest::qWaitFor([&] { return one->hasEnded() || other->hasEnded(); }, patience));
    if (one->hasEnded())
        std::swap(one, other);
    EXPECT_EQ(other->exitStatus(), 0);
    EXPECT_FALSE(one->hasEnded());
    return one;
}

TEST_P(SecondStart, MakesOneWindowOfStartsAtTheSameMoment) {
    auto one = start({"/a"});
    auto window = windowOf(std::move(one), start({"/b"}));
    EXPECT_EQ(start({"/c"})->exitStatus(), 0);
    EXPECT_FALSE(window->hasEnded());
    // What a window leaves behind that was ended by force does not keep the next from opening.
    window->kill();
    one = start({});
    window = windowOf(std::move(one), start({"/d"}));
    EXPECT_FALSE(window->hasEnded());
}

TEST_P(SecondStart, TellsWhatTheCommandLineCannotMean) {
    const std::pair<const char*, int> cases[] = {{"--help", 0}, {"-h", 0},    {"--version", 0},
                                                 {"--nope", 2}, {"-nope", 2}, {"--help=1", 2}};
    for (const auto& [argument, status] : cases)
        EXPECT_EQ(start({argument})->exitStatus(), status) << argument;
}

INSTANTIATE_TEST_SUITE_P(Ways, SecondStart, ::testing::Values(Way::bus, Way::socket),
                         [](const auto& each) { return each.param == Way::bus ? "Bus" : "Socket"; });

} // namespace

} // namespace tavrin::test
