#include "common/LogRecorder.h"
#include "common/ManualRunLoop.h"
#include "common/TemporaryFolder.h"
#include "common/Variable.h"
#include "platform/desktop/DebugManager.h"
#include "platform/desktop/Quoting.h"
#include "platform/desktop/ResourceFolder.h"
#include "platform/desktop/SystemLog.h"
#include "platform/files/FileSystemAccessManager.h"
#include "platform/files/SandboxHelper.h"
#include "platform/processes/ChildProcess.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace tavrin {
namespace {

using namespace std::chrono_literals;
using test::TemporaryFolder;
using test::Variable;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

ChildProcess::Result runShell(const std::string& script, ChildProcess::Request request = {}) {
    request.arguments = {"/bin/sh", "-c", script};
    return ChildProcess::run(request);
}

TEST(ChildProcess, GivesOutputAndStatus) {
    const auto result = runShell("printf 'a\\000b'; echo to nowhere >&2; cat; exit 3");
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(result.output, std::string("a\0b", 3));
    EXPECT_EQ(result.exitStatus, 3);
    EXPECT_FALSE(result.succeeded());
    EXPECT_TRUE(runShell("exit 0").succeeded());
    EXPECT_EQ(runShell("kill -9 $$").exitStatus, -1);
}

TEST(ChildProcess, PassesArgumentsAndEnvironmentAsTheyAre) {
    const Variable present("TAVRIN_TEST_PRESENT", "old");
    ChildProcess::Request request;
    request.arguments = {"sh", "-c", "echo \"$0|$1|$TAVRIN_TEST_PRESENT|$TAVRIN_TEST_NEW\"", "caf\xE9 *",
                         "\"$x"};
    request.environment = {{"TAVRIN_TEST_PRESENT", "changed"}, {"TAVRIN_TEST_NEW", "a=b"}};
    EXPECT_EQ(ChildProcess::run(request).output, "caf\xE9 *|\"$x|changed|a=b\n");
    EXPECT_STREQ(std::getenv("TAVRIN_TEST_PRESENT"), "old");
}

TEST(ChildProcess, ReportsWhatCannotBeStarted) {
    const std::pair<std::vector<std::string>, int> cases[] = {
        {{"/nowhere/program"}, ENOENT},
        {{"/"}, EACCES},
        {{}, EINVAL},
        {{"/bin/echo", std::string("a\0b", 3)}, EINVAL}};
    for (const auto& [arguments, error] : cases) {
        ChildProcess::Request request;
        request.arguments = arguments;
        EXPECT_EQ(ChildProcess::run(request).error, error);
    }
}

TEST(ChildProcess, BoundsTheOutput) {
    ChildProcess::Request request;
    request.outputLimit = 1000;
    const auto result = runShell("yes | head -c 300000; echo $? > /dev/null", request);
    EXPECT_EQ(result.output.size(), 1000U);
    EXPECT_TRUE(result.outputWasCut);
    EXPECT_TRUE(result.succeeded());
}

TEST(ChildProcess, KillsWhatTakesTooLongWithItsChildren) {
    for (const char* script : {"echo begun; sleep 1000; echo done", "echo begun; sleep 1000 & wait",
                               "echo begun; exec >&-; sleep 1000"}) {
        ChildProcess::Request request;
        request.timeout = 200ms;
        const auto result = runShell(script, request);
        EXPECT_TRUE(result.timedOut) << script;
        EXPECT_EQ(result.output, "begun\n") << script;
        EXPECT_EQ(result.exitStatus, -1) << script;
    }
}

TEST(ChildProcess, InheritsNeitherDescriptorsNorIgnoredSignals) {
    const TemporaryFolder folder;
    const int open = ::open(folder.write("file").c_str(), O_RDONLY); // without close-on-exec
    const auto former = std::signal(SIGPIPE, SIG_IGN);
    const auto result = runShell(fmt::format("test -e /proc/self/fd/{} || echo closed; "
                                             "{{ (yes; echo status $? >&3) | true; }} 3>&1",
                                             open));
    std::signal(SIGPIPE, former);
    ::close(open);
    EXPECT_THAT(result.output, HasSubstr("closed"));
    EXPECT_THAT(result.output, HasSubstr("status 141")); // ended by the signal, not by a failed write
}

/// Stands in for the log daemon.
class LogDaemon {
  public:
    explicit LogDaemon(const std::string& path) : socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.c_str(), std::min(path.size(), sizeof address.sun_path - 1));
        if (::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("cannot bind the socket");
    }
    ~LogDaemon() { ::close(socket); }
    LogDaemon(const LogDaemon&) = delete;
    LogDaemon& operator=(const LogDaemon&) = delete;

    std::vector<std::string> received() const {
        std::vector<std::string> lines;
        std::string buffer(64 * 1024, '\0');
        for (;;) {
            const ssize_t got = ::recv(socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
            if (got < 0)
                return lines;
            lines.push_back(buffer.substr(0, static_cast<std::size_t>(got)));
        }
    }

  private:
    int socket;
};

TEST(SystemLog, SendsGatheredLinesAndFindsADaemonThatHasBeenStartedAnew) {
    const TemporaryFolder folder;
    auto daemon = std::make_unique<LogDaemon>(folder.path("log"));
    SystemLog log(folder.path("log"));
    ASSERT_TRUE(log.isActive());
    log.write("first caf\xC3\xA9");
    log.write(std::string("second\0line", 11));
    EXPECT_TRUE(daemon->received().empty());
    log.flush();
    EXPECT_THAT(
        daemon->received(),
        ElementsAre(MatchesRegex("<13>[A-Z][a-z][a-z] [ 0-9][0-9] [0-9:]+ tavrin.[0-9]+.: first caf\xC3\xA9"),
                    HasSubstr(": second line")));
    log.flush();
    EXPECT_TRUE(daemon->received().empty());
    daemon.reset();
    log.write("lost");
    log.flush();
    folder.remove("log");
    daemon = std::make_unique<LogDaemon>(folder.path("log"));
    log.write("found");
    log.flush();
    EXPECT_THAT(daemon->received(), ElementsAre(HasSubstr(": found")));
}

TEST(SystemLog, NeverWaitsForADaemonThatDoesNotKeepUpAndTakesLinesFromManyThreads) {
    const TemporaryFolder folder;
    EXPECT_FALSE(SystemLog(folder.path("missing")).isActive());
    const LogDaemon daemon(folder.path("log"));
    {
        SystemLog log(folder.path("log"));
        SystemLog::setSharedInstance(&log);
        for (int i = 0; i < 5000; ++i) // far more than the socket holds
            log.write("line");
        log.flush();
        const std::size_t count = daemon.received().size();
        EXPECT_GT(count, 0U);
        EXPECT_LT(count, 5000U);
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([] { SystemLog::sharedInstance().write("later"); });
        for (std::thread& thread : threads)
            thread.join();
    }
    EXPECT_EQ(daemon.received().size(), 4U);
    EXPECT_FALSE(SystemLog::sharedInstance().isActive());
}

TEST(DebugManager, KeepsTheSwitchEqualToTheUserDefault) {
    const test::LogRecorder heard;
    setDebugLogIsOn(false);
    UserDefaults defaults;
    defaults.registerDefaults({{"loggerIsOn", true}});
    {
        DebugManager manager(defaults);
        manager.awakeFromNib();
        EXPECT_EQ(DebugManager::sharedDebugManager(), &manager);
        EXPECT_TRUE(debugLogIsOn());
        defaults.setObject("loggerIsOn", false);
        EXPECT_FALSE(debugLogIsOn());
        manager.setLoggerIsOn(true);
        EXPECT_TRUE(debugLogIsOn());
        EXPECT_FALSE(defaults.boolForKey("loggerIsOn"));
    }
    EXPECT_EQ(DebugManager::sharedDebugManager(), nullptr);
    EXPECT_FALSE(debugLogIsOn());
    defaults.setObject("loggerIsOn", true);
    EXPECT_FALSE(debugLogIsOn());
}

TEST(Quoting, TextsComeBackFromShellsAndDesktopEntries) {
    for (const std::string& text :
         {std::string(), std::string("it's 'so'"), std::string(" \t\r\\n\\ $x `y` \"z\" *"),
          std::string("caf\xE9\nb\\s ")}) {
        EXPECT_EQ(runShell("printf %s " + quotedForShell(text)).output, text);
        EXPECT_EQ(desktopEntry::unescaped(desktopEntry::escaped(text)), text);
        EXPECT_EQ(desktopEntry::escaped(text).find('\n'), std::string::npos);
    }
    EXPECT_EQ(desktopEntry::escaped(" a"), "\\sa");
    EXPECT_EQ(desktopEntry::quotedArgument("a$`\"\\%"), "\"a\\$\\`\\\"\\\\%%\"");
}

TEST(UserFolders, FollowTheEnvironment) {
    const Variable home("HOME", "/home/ann/");
    const Variable configuration("XDG_CONFIG_HOME", nullptr);
    const Variable data("XDG_DATA_HOME", "relative");
    EXPECT_EQ(SandboxHelper::getApplicationSupportFolderPath(), "/home/ann/.local/share/Tavrin 9");
    EXPECT_EQ(UserDefaults::defaultPath(), "/home/ann/.config/net.calderwick.tvrn9.plist");
    {
        const Variable absolute("XDG_DATA_HOME", "/data");
        EXPECT_EQ(SandboxHelper::getApplicationSupportFolderPath(), "/data/Tavrin 9");
    }
    SandboxHelper::setApplicationSupportFolderPath("/elsewhere");
    EXPECT_EQ(SandboxHelper::getApplicationSupportFolderPath(), "/elsewhere");
    SandboxHelper::setApplicationSupportFolderPath(std::nullopt);
    EXPECT_EQ(SandboxHelper::getApplicationSupportFolderPath(), "/home/ann/.local/share/Tavrin 9");
}

TEST(ResourceFolder, PrefersTheNamedFolder) {
    const TemporaryFolder folder;
    folder.write("menu.plist");
    const Variable named("TAVRIN_RESOURCES", folder.path().c_str());
    EXPECT_EQ(resourcePath("menu.plist"), folder.path("menu.plist"));
    EXPECT_EQ(resourcePath("missing.plist"), folder.path("missing.plist"));
    const Variable unnamed("TAVRIN_RESOURCES", nullptr);
    EXPECT_EQ(ResourceFolder::candidates().back(), TAVRIN_SOURCE_FOLDER "/Resources");
}

TEST(FolderAccess, IsAskedForUntilTheFolderOrOneAroundItIsGranted) {
    UserDefaults defaults;
    test::ManualRunLoop loop;
    std::vector<std::string> requests;
    FileSystemAccessManager manager(defaults, loop,
                                    [&](const std::string& path) { requests.push_back(path); });
    manager.storeAccessToPath("/home/ann/");
    for (const char* path :
         {"/home/ann", "/home/ann///", "/home/ann/a/b", "/home/anna", "/home", "/", "relative"})
        manager.obtainAccessToPath(path);
    EXPECT_THAT(requests, ElementsAre("/home/anna", "/home", "/", "relative"));
    manager.storeAccessToPath("/");
    EXPECT_TRUE(manager.wasAccessAlreadyObtainedForPath("/anything"));
    defaults.setObject("permamentAccessListArray", PropertyArray{1});
    manager.revokeAllSecurityBookmarks();
    EXPECT_TRUE(defaults.objectForKey("permamentAccessListArray")->asArray()->empty());
}

} // namespace
} // namespace tavrin
