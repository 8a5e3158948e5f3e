#include "common/FailingFileSystem.h"
#include "common/LogRecorder.h"
#include "common/Testing.h"
#include "platform/desktop/DebugManager.h"
#include "platform/desktop/FileManagerMenus.h"
#include "platform/desktop/MenuEntries.h"
#include "platform/desktop/SystemLog.h"
#include "platform/desktop/SystemVersion.h"
#include "platform/desktop/ThunarActions.h"
#include "platform/desktop/UpdateFeedReader.h"
#include "platform/files/SandboxHelper.h"
#include "platform/metadata/FileManager.h"
#include "platform/processes/ChildProcess.h"

#include <sys/socket.h>
#include <sys/un.h>

namespace tavrin {
namespace {

using enum FileManagerKind;
using namespace std::string_literals;
using test::FileCall;
using test::TemporaryFolder;
using test::Variable;
using testing::MatchesRegex;

constexpr const char* thunarList = "config/Thunar/uca.xml";

const std::string otherAction =
    "<action>\n\t<name>Other &amp; mine</name>\n"
    "\t<unique-id>1700000000000000-1</unique-id>\n\t<command>x %f</command>\n</action>";
const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

/// A user with folders of their own.
class FileManagerMenusTest : public testing::Test {
  protected:
    unsigned modeOf(const char* name) const {
        return static_cast<unsigned>(std::filesystem::status(folder.path(name)).permissions());
    }

    test::TemporaryFolder folder;
    Variable data{"XDG_DATA_HOME", folder.path("data").c_str()};
    Variable configuration{"XDG_CONFIG_HOME", folder.path("config").c_str()};
    Variable sharedData{"XDG_DATA_DIRS", folder.path("shared").c_str()};
    Variable sharedConfiguration{"XDG_CONFIG_DIRS", folder.path("xdg").c_str()};
    FileManagerMenus menus{"/opt/tavrin/bin/tavrin"};
};

TEST_F(FileManagerMenusTest, EntriesComeAreRenewedAndGoWithoutATrace) {
    FileManagerMenus moved("/home/ann/it's $5 \"100%\"/tavrin");
    for (const FileManagerKind kind : FileManagerMenus::all) {
        SCOPED_TRACE(FileManagerMenus::nameOf(kind));
        EXPECT_EQ(menus.state(kind), MenuState::absent);
        EXPECT_EQ(menus.remove(kind).message, "");
        EXPECT_EQ(menus.add(kind).message, "");
        EXPECT_EQ(menus.state(kind), MenuState::present);
        EXPECT_EQ(moved.state(kind), MenuState::outdated);
    }
    EXPECT_EQ(modeOf("data/kio/servicemenus/net.calderwick.tavrin.desktop"), 0755U);
    FileManagerMenus::setSharedInstance(&moved);
    EXPECT_EQ(moved.remove(nemo).message, "");
    FileManager().updateServicesMenu();
    FileManagerMenus::setSharedInstance(nullptr);
    for (const FileManagerKind kind : {dolphin, nautilus, thunar})
        EXPECT_EQ(moved.state(kind), MenuState::present) << FileManagerMenus::nameOf(kind);
    EXPECT_EQ(moved.state(nemo), MenuState::absent) << "renewing adds nothing";
    EXPECT_EQ(moved.add(nemo).message, "");
    EXPECT_THAT(folder.read("data/kio/servicemenus/net.calderwick.tavrin.desktop"),
                HasSubstr("\nExec=\"/home/ann/it's \\\\$5 \\\\\"100%%\\\\\"/tavrin\" %F\n"));
    EXPECT_THAT(folder.read("data/nemo/actions/net.calderwick.tavrin.nemo_action"),
                HasSubstr("\nExec='/home/ann/it'\\\\''s $5 \"100%\"/tavrin' %F\n"));
    EXPECT_THAT(folder.read(thunarList),
                HasSubstr("<command>'/home/ann/it'\\''s $5 \"100%%\"/tavrin' %F</command>"));
    for (const FileManagerKind kind : FileManagerMenus::all)
        EXPECT_EQ(moved.remove(kind).message, "");
    for (const auto& [name, content] : folder.tree())
        EXPECT_EQ(name.back(), '/') << name;
}

TEST_F(FileManagerMenusTest, WhatIsNotOursIsLeftAlone) {
    folder.write("data/nautilus/scripts/Rename with Tavrin…", "#!/bin/sh\necho mine\n");
    folder.makeFolder("data/nemo/actions/net.calderwick.tavrin.nemo_action");
    folder.link("data/kio/servicemenus/net.calderwick.tavrin.desktop", folder.write("elsewhere", "mine"));
    folder.link(thunarList, folder.write("dotfiles/uca.xml", head + "<actions/>"));
    const auto before = folder.tree();
    for (const FileManagerKind kind : FileManagerMenus::all) {
        SCOPED_TRACE(FileManagerMenus::nameOf(kind));
        EXPECT_EQ(menus.state(kind), MenuState::foreign);
        EXPECT_THAT(menus.add(kind).message, HasSubstr("is left alone"));
        EXPECT_EQ(menus.remove(kind).message, "");
    }
    menus.renew();
    EXPECT_EQ(folder.tree(), before);
}

TEST_F(FileManagerMenusTest, AnEntryForAllUsersIsEnough) {
    folder.write("shared/kio/servicemenus/net.calderwick.tavrin.desktop");
    folder.write("shared/nemo/actions/net.calderwick.tavrin.nemo_action");
    const auto before = folder.tree();
    for (const FileManagerKind kind : {dolphin, nemo}) {
        EXPECT_EQ(menus.state(kind), MenuState::systemWide);
        EXPECT_EQ(menus.add(kind).message, "");
    }
    EXPECT_EQ(folder.tree(), before);
}

/// The entries of the user differ from those that are installed for all in nothing but the program.
TEST(MenuEntries, AreTheInstalledOnesButForTheProgram) {
    const auto installed = [](const char* name, const std::string& program) {
        std::ifstream file(std::string(TAVRIN_SOURCE_FOLDER "/Resources/menus/net.calderwick.tavrin.") +
                           name);
        std::string text = fmt::format("# {}\n", MenuEntries::mark);
        text.append(std::istreambuf_iterator(file), {});
        return text.replace(text.find("Exec=tavrin") + 5, 6, program);
    };
    EXPECT_EQ(MenuEntries::dolphin("/x/tavrin"), installed("desktop", "\"/x/tavrin\""));
    EXPECT_EQ(MenuEntries::nemo("/x/tavrin"), installed("nemo_action", "/x/tavrin"));
}

TEST_F(FileManagerMenusTest, TellsWhereAnEntryCanNotGo) {
    folder.write("data", "a file in the place of the folder");
    EXPECT_THAT(menus.add(nautilus).message, HasSubstr("can't be written: Not a directory"));
    for (const char* program : {"", "bin/tavrin", "/a\nb/tavrin", "/a\xFF/tavrin"})
        for (const FileManagerKind kind : FileManagerMenus::all)
            EXPECT_THAT(FileManagerMenus(program).add(kind).message, HasSubstr("No menu can start"))
                << program;
}

TEST_F(FileManagerMenusTest, FindsFileManagersOnThePath) {
    const std::string program = folder.write("programs/thunar");
    const Variable path("PATH", (folder.path("none") + ":" + folder.path("programs")).c_str());
    EXPECT_FALSE(FileManagerMenus::isInstalled(thunar)) << "not executable";
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    EXPECT_TRUE(FileManagerMenus::isInstalled(thunar));
    EXPECT_FALSE(FileManagerMenus::isInstalled(dolphin));
}

TEST_F(FileManagerMenusTest, TheScriptOfNautilusHandsOverTheSelectedFiles) {
    const std::string program =
        folder.write("bin it's/tavrin", "#!/bin/sh\nfor each; do printf '%s|' \"$each\"; done\n");
    ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
    ASSERT_EQ(FileManagerMenus(program).add(nautilus).message, "");
    const std::string here = folder.makeFolder("pictures");
    // The folder, all paths that are selected, if they are told, the arguments, and what the program is
    // given.
    const std::tuple<std::string, std::string, const char*, std::string> cases[] = {
        {here, here + "/a b.jpg\n" + here + "/-c*\n", "'a b.jpg' '-c*'", "--|a b.jpg|-c*|"},
        {here, here + "/a\nb\n" + here + "/c\n", "'a\nb' c", "--|a\nb|c|"}, // a name of the folder shown
        {here, here + "/deep er/*\n/tmp/$x\n", "'*' '$x'", "--|" + here + "/deep er/*|/tmp/$x|"}, // found
        {"/", "/tmp\n/etc\n", "tmp etc", "--|tmp|etc|"},
        {here, "", "a 'b c'", "--|a|b c|"},
        {here, "", "", "--|"},
    };
    for (const auto& [shown, selection, arguments, given] : cases) {
        const Variable paths("NAUTILUS_SCRIPT_SELECTED_FILE_PATHS",
                             selection.empty() ? nullptr : selection.c_str());
        ChildProcess::Request request;
        request.arguments = {
            "/bin/sh", "-c",
            fmt::format("cd '{}' && exec \"$XDG_DATA_HOME/nautilus/scripts/Rename with Tavrin…\" {}", shown,
                        arguments)};
        EXPECT_EQ(ChildProcess::run(request).output, given);
    }
}

TEST_F(FileManagerMenusTest, AListTakesOurActionAndGivesTheRestBack) {
    const std::string ours =
        "<action><unique-id>net-calderwick-tavrin-1</unique-id><command>/old %F</command></action>";
    const std::string type = head + "<!DOCTYPE actions [\n<!ELEMENT actions (action)+>\n]>\n";
    // A list, and what it is without our action, with a ^ in the place where that comes; or behind a ! why it
    // is left alone.
    const std::pair<std::string, std::string> cases[] = {
        {head + "<actions>\n" + otherAction + "\n</actions>\n",
         head + "<actions>\n" + otherAction + "\n^</actions>\n"},
        {"<actions></actions>", "<actions>^</actions>"},
        {head + "<actions a=\"/>\" /><!-- <actions/> -->\r\n",
         head + "<actions a=\"/>\" >\n^</actions><!-- <actions/> -->\r\n"},
        {"<actions>" + ours + "\n" + otherAction + ours + "</actions>",
         "<actions>" + otherAction + "^</actions>"},
        {"<actions><!-- " + ours + " --></actions>", "<actions><!-- " + ours + " -->^</actions>"},
        {"<actions><action><x>" + ours + "</x></action></actions>",
         "<actions><action><x>" + ours + "</x></action>^</actions>"},
        {type + "<actions>\n" + otherAction + "\n</actions>",
         type + "<actions>\n" + otherAction + "\n^</actions>"},
        {head + "<actions><action></actions>", "!mismatched tag"},
        {head + "<actions>" + otherAction, "!no element found"},
        {head + "<menu/>", "!it holds no actions"},
        {"<!DOCTYPE actions [<!ENTITY a \"b\">]><actions>&a;</actions>", "!declares entities"},
        {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><actions/>", "!not in UTF-8"},
        {std::string("\xFE\xFF\0<\0a\0/\0>", 10), "!not in UTF-8"},
        {"no markup", "!line 1"},
        {"<actions>" + std::string(ThunarActions::sizeLimit, ' ') + "</actions>", "!larger than 4 MiB"},
    };
    for (const auto& [list, expected] : cases) {
        SCOPED_TRACE(expected);
        ASSERT_EQ(::chmod(folder.write(thunarList, list).c_str(), 0640), 0);
        const std::string message = menus.add(thunar).message;
        if (expected.starts_with('!')) {
            EXPECT_THAT(message, HasSubstr(expected.substr(1)));
            EXPECT_EQ(menus.state(thunar), MenuState::foreign);
            EXPECT_EQ(folder.read(thunarList), list);
            continue;
        }
        EXPECT_EQ(message, "");
        EXPECT_EQ(menus.state(thunar), MenuState::present);
        const std::string with = folder.read(thunarList);
        const std::size_t place = expected.find('^');
        const std::string before = expected.substr(0, place);
        const std::string after = expected.substr(place + 1);
        EXPECT_TRUE(with.starts_with(before + "<action>\n\t<icon>net.calderwick.tavrin</icon>")) << with;
        EXPECT_TRUE(with.ends_with("</action>\n" + after)) << with;
        EXPECT_EQ(modeOf(thunarList), 0640U);
        EXPECT_EQ(menus.add(thunar).message, "") << "again";
        EXPECT_EQ(folder.read(thunarList), with);
        EXPECT_EQ(menus.remove(thunar).message, "");
        EXPECT_EQ(folder.read(thunarList), before + after);
    }
}

TEST_F(FileManagerMenusTest, AFirstListOfActionsKeepsWhatIsThereForAllUsers) {
    folder.write("xdg/Thunar/uca.xml", head + "<actions>\n" + otherAction + "\n</actions>\n");
    EXPECT_EQ(menus.add(thunar).message, "");
    EXPECT_THAT(folder.read(thunarList), HasSubstr(otherAction));
    EXPECT_EQ(modeOf(thunarList), 0600U);
    EXPECT_EQ(menus.remove(thunar).message, "");
    EXPECT_EQ(folder.kind(thunarList), std::nullopt);
}

TEST_F(FileManagerMenusTest, AListThatCanNotBeReadOrWrittenStays) {
    folder.write(thunarList, "<actions/>");
    test::FailingFileSystem files;
    for (const FileCall call : {FileCall::read, FileCall::write}) {
        files.failKind(call, EACCES);
        EXPECT_THAT(menus.add(thunar).message, HasSubstr("Permission denied"));
        files.reset();
        EXPECT_EQ(folder.read(thunarList), "<actions/>");
    }
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
    EXPECT_THAT(daemon->received(), ElementsAre());
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
        const std::size_t count = daemon.received().size();
        EXPECT_TRUE(count > 0 && count < 5000) << count;
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

TEST(UserFolders, FollowTheEnvironment) {
    const Variable home("HOME", "/home/ann/");
    const Variable configuration("XDG_CONFIG_HOME", nullptr);
    const Variable data("XDG_DATA_HOME", "relative");
    EXPECT_EQ(SandboxHelper::getApplicationSupportFolderPath(), "/home/ann/.local/share/Tavrin 9");
    EXPECT_EQ(UserDefaults::defaultPath(), "/home/ann/.config/net.calderwick.tvrn9.plist");
    SandboxHelper::setApplicationSupportFolderPath("/elsewhere");
    EXPECT_EQ(SandboxHelper::getApplicationSupportFolderPath(), "/elsewhere");
    SandboxHelper::setApplicationSupportFolderPath(std::nullopt);
    const Variable absolute("XDG_DATA_HOME", "/data");
    EXPECT_EQ(SandboxHelper::getApplicationSupportFolderPath(), "/data/Tavrin 9");
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
