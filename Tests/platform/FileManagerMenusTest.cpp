#include "platform/desktop/FileManagerMenus.h"

#include "common/FailingFileSystem.h"
#include "common/TemporaryFolder.h"
#include "common/Variable.h"
#include "platform/desktop/MenuEntries.h"
#include "platform/desktop/ThunarActions.h"
#include "platform/metadata/FileManager.h"
#include "platform/processes/ChildProcess.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace tavrin {
namespace {

using test::FileCall;
using test::Variable;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using enum FileManagerKind;

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
    const struct {
        std::string folder;
        std::string selection; ///< all paths, if any are told
        const char* arguments;
        std::string given;
    } cases[] = {
        {here, here + "/a b.jpg\n" + here + "/-c*\n", "'a b.jpg' '-c*'", "--|a b.jpg|-c*|"},
        {here, here + "/a\nb\n" + here + "/c\n", "'a\nb' c", "--|a\nb|c|"}, // a name of the folder shown
        {here, here + "/deep er/*\n/tmp/$x\n", "'*' '$x'", "--|" + here + "/deep er/*|/tmp/$x|"}, // found
        {"/", "/tmp\n/etc\n", "tmp etc", "--|tmp|etc|"},
        {here, "", "a 'b c'", "--|a|b c|"},
        {here, "", "", "--|"},
    };
    for (const auto& each : cases) {
        const Variable paths("NAUTILUS_SCRIPT_SELECTED_FILE_PATHS",
                             each.selection.empty() ? nullptr : each.selection.c_str());
        ChildProcess::Request request;
        request.arguments = {
            "/bin/sh", "-c",
            fmt::format("cd '{}' && exec \"$XDG_DATA_HOME/nautilus/scripts/Rename with Tavrin…\" {}",
                        each.folder, each.arguments)};
        EXPECT_EQ(ChildProcess::run(request).output, each.given);
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
        EXPECT_THAT(with, StartsWith(before + "<action>\n\t<icon>net.calderwick.tavrin</icon>"));
        EXPECT_THAT(with, EndsWith("</action>\n" + after));
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

} // namespace
} // namespace tavrin
