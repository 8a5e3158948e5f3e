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
#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <sys/stat.h>

namespace tavrin {
namespace {

using test::FailingFileSystem;
using test::FileCall;
using test::TemporaryFolder;
using test::Variable;
using testing::ElementsAre;
using testing::HasSubstr;
using enum FileManagerKind;

constexpr const char* thunarList = "config/Thunar/uca.xml";

const std::string otherAction =
    "<action>\n\t<name>Other &amp; mine</name>\n"
    "\t<unique-id>1700000000000000-1</unique-id>\n\t<command>x %f</command>\n</action>";
const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

/// A user with folders of their own.
class FileManagerMenusTest : public testing::Test {
  protected:
    mode_t modeOf(const char* name) const {
        struct stat status {};
        EXPECT_EQ(::stat(folder.path(name).c_str(), &status), 0) << name;
        return status.st_mode & 0777U;
    }

    TemporaryFolder folder;
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
    const auto installed = [](const char* name) {
        std::ifstream file(std::string(TAVRIN_SOURCE_FOLDER "/Resources/menus/net.calderwick.tavrin.") +
                           name);
        std::ostringstream content;
        content << "# " << MenuEntries::mark << '\n' << file.rdbuf();
        std::string text = content.str();
        return text.replace(text.find("Exec=tavrin") + 5, 6, "PROGRAM");
    };
    const auto replaced = [](std::string text, const std::string& program) {
        return text.replace(text.find(program), program.size(), "PROGRAM");
    };
    EXPECT_EQ(replaced(MenuEntries::dolphin("/x/tavrin"), "\"/x/tavrin\""), installed("desktop"));
    EXPECT_EQ(replaced(MenuEntries::nemo("/x/tavrin"), "/x/tavrin"), installed("nemo_action"));
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

/// The script of Nautilus under sh, with a program that writes down what it is given.
class NautilusScriptTest : public FileManagerMenusTest {
  protected:
    std::vector<std::string> given(const std::string& inFolder, const std::string& selection,
                                   const std::string& arguments) {
        const std::string program =
            folder.write("bin it's/tavrin", "#!/bin/sh\nfor each; do printf '%s|' \"$each\"; done\n");
        EXPECT_EQ(::chmod(program.c_str(), 0755), 0);
        EXPECT_EQ(FileManagerMenus(program).add(nautilus).message, "");
        const Variable paths("NAUTILUS_SCRIPT_SELECTED_FILE_PATHS",
                             selection.empty() ? nullptr : selection.c_str());
        ChildProcess::Request request;
        request.arguments = {
            "/bin/sh", "-c",
            fmt::format("cd '{}' && exec \"$XDG_DATA_HOME/nautilus/scripts/Rename with Tavrin…\" {}",
                        inFolder, arguments)};
        const std::string output = ChildProcess::run(request).output;
        std::vector<std::string> result;
        for (std::size_t begin = 0, end; (end = output.find('|', begin)) != std::string::npos;
             begin = end + 1)
            result.push_back(output.substr(begin, end - begin));
        return result;
    }
};

TEST_F(NautilusScriptTest, HandsOverTheSelectedFiles) {
    const std::string here = folder.makeFolder("pictures");
    EXPECT_THAT(given(here, here + "/a b.jpg\n" + here + "/-c*\n", "'a b.jpg' '-c*'"),
                ElementsAre("--", "a b.jpg", "-c*"));
    EXPECT_THAT(given(here, here + "/a\nb\n" + here + "/c\n", "'a\nb' c"), ElementsAre("--", "a\nb", "c"))
        << "a line feed in a name of the folder shown";
    EXPECT_THAT(given(here, here + "/deep er/*\n/tmp/$x\n", "'*' '$x'"),
                ElementsAre("--", here + "/deep er/*", "/tmp/$x"))
        << "search results lie elsewhere";
    EXPECT_THAT(given("/", "/tmp\n/etc\n", "tmp etc"), ElementsAre("--", "tmp", "etc"));
    EXPECT_THAT(given(here, "", "a 'b c'"), ElementsAre("--", "a", "b c")) << "no selection is told";
    EXPECT_THAT(given(here, "", ""), ElementsAre("--"));
}

/// A list of actions on disk, and what becomes of it.
struct ThunarCase {
    const char* name;
    std::string list;
    std::string before; ///< what stands before our action once it is added; empty where it is refused
    std::string after;
    std::string reason; ///< of a refusal
};

class ThunarListTest : public FileManagerMenusTest, public testing::WithParamInterface<ThunarCase> {};

TEST_P(ThunarListTest, TakesOurActionAndGivesTheRestBack) {
    const ThunarCase& each = GetParam();
    const std::string path = folder.write(thunarList, each.list);
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    const MenuOutcome added = menus.add(thunar);
    if (!each.reason.empty()) {
        EXPECT_THAT(added.message, HasSubstr(each.reason));
        EXPECT_EQ(menus.state(thunar), MenuState::foreign);
        EXPECT_EQ(folder.read(thunarList), each.list);
        return;
    }
    EXPECT_EQ(added.message, "");
    EXPECT_EQ(menus.state(thunar), MenuState::present);
    const std::string list = folder.read(thunarList);
    EXPECT_TRUE(list.starts_with(each.before + "<action>\n\t<icon>net.calderwick.tavrin</icon>")) << list;
    EXPECT_TRUE(list.ends_with("</action>\n" + each.after)) << list;
    EXPECT_EQ(modeOf(thunarList), 0640U);
    EXPECT_EQ(menus.add(thunar).message, "") << "again";
    EXPECT_EQ(folder.read(thunarList), list);
    EXPECT_EQ(menus.remove(thunar).message, "");
    EXPECT_EQ(folder.read(thunarList), each.before + each.after);
}

const std::string ours =
    "<action><unique-id>net-calderwick-tavrin-1</unique-id><command>/old %F</command></action>";

INSTANTIATE_TEST_SUITE_P(
    Lists, ThunarListTest,
    testing::Values(ThunarCase{"Others", head + "<actions>\n" + otherAction + "\n</actions>\n",
                               head + "<actions>\n" + otherAction + "\n", "</actions>\n", ""},
                    ThunarCase{"NoDeclaration", "<actions></actions>", "<actions>", "</actions>", ""},
                    ThunarCase{"Bare", head + "<actions a=\"/>\" /><!-- <actions/> -->\r\n",
                               head + "<actions a=\"/>\" >\n", "</actions><!-- <actions/> -->\r\n", ""},
                    ThunarCase{"OursAmongOthers",
                               "<actions>" + ours + "\n" + otherAction + ours + "</actions>",
                               "<actions>" + otherAction, "</actions>", ""},
                    ThunarCase{"OnlyAComment", "<actions><!-- " + ours + " --></actions>",
                               "<actions><!-- " + ours + " -->", "</actions>", ""},
                    ThunarCase{"IdOfASubmenu", "<actions><action><x>" + ours + "</x></action></actions>",
                               "<actions><action><x>" + ours + "</x></action>", "</actions>", ""},
                    ThunarCase{"Malformed", head + "<actions><action></actions>", "", "", "mismatched tag"},
                    ThunarCase{"CutOff", head + "<actions>" + otherAction, "", "", "no element found"},
                    ThunarCase{"AnotherKind", head + "<menu/>", "", "", "it holds no actions"},
                    ThunarCase{"DocumentType",
                               head + "<!DOCTYPE actions [\n<!ELEMENT actions (action)+>\n]>\n<actions>\n" +
                                   otherAction + "\n</actions>",
                               head + "<!DOCTYPE actions [\n<!ELEMENT actions (action)+>\n]>\n<actions>\n" +
                                   otherAction + "\n",
                               "</actions>", ""},
                    ThunarCase{"Entities", "<!DOCTYPE actions [<!ENTITY a \"b\">]><actions>&a;</actions>", "",
                               "", "declares entities"},
                    ThunarCase{"Latin1", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><actions/>", "", "",
                               "not in UTF-8"},
                    ThunarCase{"Utf16", std::string("\xFE\xFF\0<\0a\0/\0>", 10), "", "", "not in UTF-8"},
                    ThunarCase{"NotXml", "no markup", "", "", "line 1"},
                    ThunarCase{"Huge",
                               "<actions>" + std::string(ThunarActions::sizeLimit, ' ') + "</actions>", "",
                               "", "larger than 4 MiB"}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(FileManagerMenusTest, AFirstListOfActionsKeepsWhatIsThereForAllUsers) {
    const std::string shared = head + "<actions>\n" + otherAction + "\n</actions>\n";
    folder.write("xdg/Thunar/uca.xml", shared);
    EXPECT_EQ(menus.add(thunar).message, "");
    EXPECT_THAT(folder.read(thunarList), HasSubstr(otherAction));
    EXPECT_EQ(modeOf(thunarList), 0600U);
    EXPECT_EQ(menus.remove(thunar).message, "");
    EXPECT_EQ(folder.kind(thunarList), std::nullopt);
}

TEST_F(FileManagerMenusTest, AListThatCanNotBeReadOrWrittenStays) {
    folder.write(thunarList, "<actions/>");
    FailingFileSystem files;
    for (const FileCall call : {FileCall::read, FileCall::write}) {
        files.failKind(call, EACCES);
        EXPECT_THAT(menus.add(thunar).message, HasSubstr("Permission denied"));
        files.reset();
        EXPECT_EQ(folder.read(thunarList), "<actions/>");
    }
}

} // namespace
} // namespace tavrin
