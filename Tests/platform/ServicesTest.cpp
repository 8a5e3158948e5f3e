#include "common/LogRecorder.h"
#include "common/ManualRunLoop.h"
#include "common/TemporaryFolder.h"
#include "common/Variable.h"
#include "platform/desktop/DebugManager.h"
#include "platform/desktop/Quoting.h"
#include "platform/desktop/SystemLog.h"
#include "platform/desktop/SystemVersion.h"
#include "platform/desktop/UpdateFeedReader.h"
#include "platform/files/FileSystemAccessManager.h"
#include "platform/files/SandboxHelper.h"
#include "platform/processes/ChildProcess.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>

namespace tavrin {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using test::TemporaryFolder;
using test::Variable;
using testing::AllOf;
using testing::ElementsAre;
using testing::Gt;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Lt;
using testing::MatchesRegex;

/// What a script of sh prints, up to 20 bytes, and how it ends.
std::string told(const std::string& script) {
    ChildProcess::Request request;
    request.arguments = {"/bin/sh", "-c", script};
    request.outputLimit = 20;
    request.timeout = script.find("sleep") == std::string::npos ? 60s : 200ms;
    const auto result = ChildProcess::run(request);
    return fmt::format("{}|{}{}{}{}", result.output, result.exitStatus, result.succeeded() ? " well" : "",
                       result.timedOut ? " late" : "", result.outputWasCut ? " cut" : "");
}

TEST(ChildProcess, TellsWhatAProgramPrintsAndHowItEnds) {
    const std::pair<const char*, std::string> cases[] = {
        {"printf 'a\\000b'; echo to nowhere >&2; cat; exit 3", "a\0b|3"s},
        {"exit 0", "|0 well"},
        {"kill -9 $$", "|-1"},
        {"yes | head -c 300000; echo $? > /dev/null", "y\ny\ny\ny\ny\ny\ny\ny\ny\ny\n|0 well cut"},
        {"echo begun; sleep 1000; echo done", "begun\n|-1 late"},
        {"echo begun; sleep 1000 & wait", "begun\n|-1 late"},
        {"echo begun; exec >&-; sleep 1000", "begun\n|-1 late"},
    };
    for (const auto& [script, expected] : cases)
        EXPECT_EQ(told(script), expected) << script;
}

TEST(ChildProcess, PassesArgumentsAndEnvironmentAsTheyAre) {
    const Variable present("TAVRIN_TEST_PRESENT", "old");
    ChildProcess::Request request;
    request.arguments = {"sh", "-c", "echo \"$0|$1|$TAVRIN_TEST_PRESENT|$TAVRIN_TEST_NEW\"", "caf\xE9 *",
                         "\"$x"};
    request.environment = {{"TAVRIN_TEST_PRESENT", "changed"}, {"TAVRIN_TEST_NEW", "a=b"}};
    EXPECT_EQ(ChildProcess::run(request).output, "caf\xE9 *|\"$x|changed|a=b\n");
    EXPECT_STREQ(std::getenv("TAVRIN_TEST_PRESENT"), "old");
    for (const auto& [arguments, error] :
         std::initializer_list<std::pair<std::vector<std::string>, int>>{{{"/nowhere/program"}, ENOENT},
                                                                         {{"/"}, EACCES},
                                                                         {{}, EINVAL},
                                                                         {{"/bin/echo", "a\0b"s}, EINVAL}}) {
        request.arguments = arguments;
        EXPECT_EQ(ChildProcess::run(request).error, error);
    }
}

TEST(ChildProcess, InheritsNeitherDescriptorsNorIgnoredSignals) {
    const Descriptor leaky(::fcntl(STDERR_FILENO, F_DUPFD, 77)); // without close-on-exec
    const auto former = std::signal(SIGPIPE, SIG_IGN);
    EXPECT_EQ(told(fmt::format("test -e /proc/self/fd/{} || echo closed", leaky.get())), "closed\n|0 well");
    // Ended by the signal, not by a failed write.
    EXPECT_EQ(told("{ (yes; echo status $? >&3) | true; } 3>&1"), "status 141\n|0 well");
    std::signal(SIGPIPE, former);
}

/// Stands in for the log daemon.
class LogDaemon {
  public:
    explicit LogDaemon(const TemporaryFolder& folder) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        folder.path("log").copy(address.sun_path, sizeof address.sun_path - 1);
        if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
            throw std::runtime_error("cannot bind the socket");
    }
    std::vector<std::string> received() const {
        std::vector<std::string> lines;
        std::string buffer(64 * 1024, '\0');
        for (ssize_t got; (got = ::recv(socket.get(), buffer.data(), buffer.size(), MSG_DONTWAIT)) >= 0;)
            lines.push_back(buffer.substr(0, static_cast<std::size_t>(got)));
        return lines;
    }

  private:
    Descriptor socket{::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)};
};

TEST(SystemLog, SendsGatheredLinesAndFindsADaemonThatHasBeenStartedAnew) {
    const TemporaryFolder folder;
    auto daemon = std::make_unique<LogDaemon>(folder);
    SystemLog log(folder.path("log"));
    ASSERT_TRUE(log.isActive());
    log.write("first caf\xC3\xA9");
    log.write("second\0line"s);
    EXPECT_THAT(daemon->received(), IsEmpty());
    log.flush();
    EXPECT_THAT(
        daemon->received(),
        ElementsAre(MatchesRegex("<13>[A-Z][a-z][a-z] [ 0-9][0-9] [0-9:]+ tavrin.[0-9]+.: first caf\xC3\xA9"),
                    HasSubstr(": second line")));
    daemon.reset();
    log.write("lost");
    log.flush();
    folder.remove("log");
    daemon = std::make_unique<LogDaemon>(folder);
    log.write("found");
    log.flush();
    EXPECT_THAT(daemon->received(), ElementsAre(HasSubstr(": found")));
}

TEST(SystemLog, NeverWaitsForADaemonThatDoesNotKeepUpAndTakesLinesFromManyThreads) {
    const TemporaryFolder folder;
    EXPECT_FALSE(SystemLog(folder.path("missing")).isActive());
    const LogDaemon daemon(folder);
    {
        SystemLog log(folder.path("log"));
        SystemLog::setSharedInstance(&log);
        for (int i = 0; i < 5000; ++i) // far more than the socket holds
            log.write("line");
        log.flush();
        EXPECT_THAT(daemon.received().size(), AllOf(Gt(0U), Lt(5000U)));
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([] { SystemLog::sharedInstance().write("later"); });
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
        EXPECT_TRUE(debugLogIsOn());
        defaults.setObject("loggerIsOn", false);
        EXPECT_FALSE(debugLogIsOn());
        manager.setLoggerIsOn(true);
        EXPECT_TRUE(debugLogIsOn());
        EXPECT_FALSE(defaults.boolForKey("loggerIsOn"));
    }
    EXPECT_EQ(DebugManager::sharedDebugManager(), nullptr);
    defaults.setObject("loggerIsOn", true);
    EXPECT_FALSE(debugLogIsOn());
}

TEST(Quoting, TextsComeBackFromShellsAndDesktopEntries) {
    for (const std::string& text :
         std::initializer_list<std::string>{"", "it's 'so'", " \t\r\\n\\ $x `y` \"z\"*", "caf\xE9\nb\\s "}) {
        EXPECT_EQ(told("printf %s " + quotedForShell(text)), text + "|0 well");
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
    const Variable absolute("XDG_DATA_HOME", "/data");
    EXPECT_EQ(SandboxHelper::getApplicationSupportFolderPath(), "/data/Tavrin 9");
    SandboxHelper::setApplicationSupportFolderPath("/elsewhere");
    EXPECT_EQ(SandboxHelper::getApplicationSupportFolderPath(), "/elsewhere");
    SandboxHelper::setApplicationSupportFolderPath(std::nullopt);
    EXPECT_EQ(SandboxHelper::getApplicationSupportFolderPath(), "/data/Tavrin 9");
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

using Items = std::vector<UpdateFeedItem>;

std::string feed(const std::string& items) {
    return "<?xml version='1.0'?>\n<rss version='2.0' xmlns:s='urn:feed'><channel>\n"
           "<title>All releases</title><link>https://example.org</link>\n" +
           items + "</channel></rss>";
}

TEST(UpdateFeedReader, ReadsWhatAReleaseTells) {
    const auto items = std::get<Items>(UpdateFeedReader::read(
        feed("<item><title> Tavrin &amp; <![CDATA[friends]]> </title><link>https://example.org/1</link>"
             "<description><title>within</title><s:version>7</s:version></description>"
             "<s:minimumSystemVersion>\n 5.10\n</s:minimumSystemVersion>"
             "<s:releaseNotesLink>https://example.org/notes</s:releaseNotesLink>"
             "<enclosure url='x' version='8' s:version='9.1' s:shortVersionString='9.1 (fine)'/></item>"
             "<item><s:version>9.2b1</s:version><s:shortVersionString>9.2</s:shortVersionString></item>"
             "<item/>")));
    std::vector<std::string> told;
    for (const UpdateFeedItem& item : items)
        told.push_back(fmt::format("{}|{}|{}|{}|{}|{}", item.title, item.version, item.shortVersion,
                                   item.minimumSystemVersion, item.link, item.releaseNotesLink));
    EXPECT_THAT(
        told,
        ElementsAre("Tavrin & friends|9.1|9.1 (fine)|5.10|https://example.org/1|https://example.org/notes",
                    "|9.2b1|9.2|||", "|||||"));
}

TEST(UpdateFeedReader, RefusesWhatIsNoFeedOrTooMuch) {
    const auto repeated = [](const char* text, int count) {
        return fmt::format("{}", fmt::join(std::vector<const char*>(count, text), ""));
    };
    const std::pair<std::string, const char*> cases[] = {
        {"", "no element"},
        {"hello", "line 1"},
        {"<html/>", "line 1: this is no feed of updates"},
        {"<f:rss xmlns:f='urn:other'/>", "this is no feed of updates"},
        {"\n<rss>\n<channel>", "line 3"},
        {"<!DOCTYPE rss [<!ENTITY a 'aaaa'><!ENTITY b '&a;&a;'>]><rss>&b;</rss>",
         "line 1: a document type is not allowed"},
        {"<!DOCTYPE rss SYSTEM 'file:///etc/passwd'><rss/>", "a document type is not allowed"},
        {feed("<item><title>&unknown;</title></item>"), "line 4"},
        {feed("<item><x:version>9</x:version></item>"), "line 4"},
        {feed("<item><title>\xFF</title></item>"), "line 4"},
        {feed(repeated("<item/>", 1001)), "too many items"},
        {feed(repeated("<a>", 70) + repeated("</a>", 70)), "nested too deeply"},
        {feed("<item><title>" + std::string(16385, 'x') + "</title></item>"), "a text is too long"},
        {feed("<item><enclosure s:version='" + std::string(16385, '9') + "'/></item>"), "a text is too long"},
        {feed(std::string(UpdateFeedReader::sizeLimit, ' ')), "larger than 4 MiB"},
    };
    for (const auto& [bytes, reason] : cases)
        EXPECT_THAT(std::get<UpdateFeedError>(UpdateFeedReader::read(bytes)).message, HasSubstr(reason));
    EXPECT_TRUE(std::holds_alternative<Items>(UpdateFeedReader::read(feed(repeated("<item/>", 1000)))));
}

TEST(SystemVersion, IsThatOfTheKernelOrOfTheDistribution) {
    std::string kernels;
    for (const char* release : {"6.1.0-13-amd64", "5.15", "4", "6.1.5.9", "6.x", "6..1", "generic", ""})
        kernels += SystemVersion::ofKernelRelease(release) + "|";
    EXPECT_EQ(kernels, "6.1.0|5.15.0|4.0.0|6.1.5|6.0.0|6.0.0|||");
    std::string distributions;
    for (const char* content : {"NAME=x\nVERSION_ID=\"12\"\n", "VERSION_ID='22.04'", "VERSION_ID=3.18\r\n",
                                "XVERSION_ID=1\n", "VERSION_ID=\n", ""})
        distributions += SystemVersion::ofDistribution(content) + "|";
    EXPECT_EQ(distributions, "12|22.04|3.18||||");
    EXPECT_THAT(SystemVersion::asText(), MatchesRegex("[0-9]+[.][0-9]+[.][0-9]+"));
}

} // namespace
} // namespace tavrin
