#include "RenameBench.h"
#include "common/FailingFileSystem.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace tavrin::test {

namespace {

const std::string linkReason =
    "This file is a symbolic link and for safety reasons, Tavrin will not rename symbolic links.";
const std::string defaultReason =
    "You may not have sufficient access privileges to rename the file, the file may be on a read-only "
    "medium, an incompatible external drive or unsupported remote file system or it may be locked.";

/// One item that is to get a name, and what the user is told when it does not: the detail, but of a link and
/// of a taken name; nothing where it works.
struct Case {
    const char* title;
    std::string name;
    std::u16string finalName;
    std::string told;
    const char* sinceReading = "";

    [[nodiscard]] std::string message() const {
        if (told == "taken")
            return "Another file with this name already exists in this folder.";
        return (told.ends_with("link now") ? linkReason : defaultReason) + " (" + told + ")";
    }
};

const Case cases[] = {
    {"empty", "a", u"", "The new name is empty"},
    {"the folder itself", "a", u".", "This name stands for a folder itself"},
    {"the folder above", "a", u"..", "This name stands for a folder itself"},
    {"the end of a name", "a", {u'b', 0, u'c'}, "It holds a character that ends a name"},
    {"too long in bytes", "a", std::u16string(87, u'\u4e00'), "File name too long: 261 of 255 bytes"},
    {"just short enough", "a", std::u16string(85, u'\u4e00'), ""},
    {"a high half", "a\U0001F4A9", u"a\xD83D", "It cuts a character in two"},
    {"a low half that looks like a byte", "a\U0001F480", u"a\xDC80", "It cuts a character in two"},
    {"a byte that the name has not", "a", u"a\xDCE9", "It cuts a character in two"},
    {"a byte that the name has", "a \xE9", u"b \xDCE9", ""},
    {"a taken name", "a", u"z", "taken"},
    {"a name taken by a dangling link", "a", u"new", "taken", "link new nowhere"},
    {"a change of case to a name of another", "a", u"A", "taken", "write A other"},
    {"a change of case to another name of the same file", "a", u"A", "taken", "second a A"},
    {"gone", "a", u"new", "No such file: it has been removed or renamed since the list was read", "remove a"},
    {"saved anew by replacing", "a", u"new", "", "save a"},
    {"", "a", u"new", "It was a file when the list was read, and is a folder now", "remove a, folder a"},
    {"", "a", u"new", "It was a file when the list was read, and is a link now", "remove a, link a z"},
};

/// Makes rename, exchange and link answer like file systems that know them not.
int refusing(const FileEvent& event, bool link) {
    if (event.call == FileCall::rename || event.call == FileCall::exchange)
        return EOPNOTSUPP;
    return link && event.call == FileCall::link ? EPERM : 0;
}

} // namespace

/// In all modes, and by all ways to refuse a taken name.
TEST(RenameReasons, AreThoseOfTheSystem) {
    for (int modeAndWay = 0; modeAndWay < 9; ++modeAndWay) {
        const int way = modeAndWay % 3;
        for (const Case& one : cases) {
            SCOPED_TRACE(fmt::format("{}{}, mode {}, way {}", one.title, one.told, modeAndWay / 3, way));
            RenameBench bench;
            bench.host.set("renameMode", modeAndWay / 3);
            bench.host.defaults.setObject("alreadySwitchedToLionModeOnce", true);
            bench.make({one.name, "z"});
            bench.read({one.name, "z"});
            bench.happens(one.sinceReading);
            bench.setFinalName(one.name, one.finalName);
            const auto before = bench.disk.tree();
            FailingFileSystem disk;
            disk.before = [&](const FileEvent& event) { return way == 0 ? 0 : refusing(event, way == 2); };
            bench.rename();
            const bool works = one.told.empty();
            EXPECT_EQ(bench.renamed(), works ? 1 : 0);
            EXPECT_EQ(bench.host.counters().numberOfItemsNotRenamed, works ? 0 : 1);
            EXPECT_EQ(bench.disk.tree() == before, !works);
            ASSERT_EQ(bench.reports.size(), works ? 0U : 1U);
            if (!works) {
                EXPECT_EQ(bench.reports[0].message, one.message());
                EXPECT_EQ(bench.reports[0].title, "Could not change a file name");
            }
        }
    }
}

TEST(RenameReasons, LinksAreRefusedWithoutATry) {
    RenameBench bench;
    bench.happens("link f/link a, link f/folder-link ..");
    bench.read({"f"});
    bench.setFinalName("f/link", u"new link");
    bench.setFinalName("f/folder-link", u"new folder link");
    FailingFileSystem disk;
    bench.rename();
    EXPECT_EQ(disk.nameChangeCount(), 0U);
    ASSERT_EQ(bench.reports.size(), 2U);
    EXPECT_EQ(bench.reports[0].message, linkReason);
}

TEST(RenameModes, TryTheirRouteAndThenTheOthersUnlessTheNameIsTaken) {
    for (const auto& [mode, tries] : {std::pair{0, 4U}, {1, 4U}, {2, 4U}, {3, 0U}, {-1, 0U}}) {
        for (const int error : {EACCES, EEXIST, EROFS}) {
            SCOPED_TRACE(mode);
            RenameBench bench;
            bench.host.set("renameMode", mode);
            bench.host.defaults.setObject("alreadySwitchedToLionModeOnce", true);
            bench.plan("a>b");
            FailingFileSystem disk;
            disk.failKind(FileCall::rename, error);
            bench.rename();
            EXPECT_EQ(disk.nameChangeCount(), error == EEXIST && tries > 0 ? 1U : tries);
            EXPECT_EQ(bench.files(), tree("a"));
            ASSERT_EQ(bench.reports.size(), 1U);
            EXPECT_EQ(bench.reports[0].message.ends_with("(Read-only file system)"),
                      error == EROFS && tries > 0);
        }
    }
}

TEST(RenameModes, TheOldOneIsSwitchedToTheNewestOnceOnly) {
    RenameBench bench;
    bench.plan("a");
    for (const int kept : {0, 2}) {
        bench.host.set("renameMode", 2);
        bench.rename();
        EXPECT_EQ(bench.host.settings.values().renameMode, kept);
    }
}

/// One look through the folder tells for all its items whether case counts there.
TEST(RenameCase, ChangesDirectlyOrByAStandInThatIsFree) {
    const std::string dummy =
        "this~dummy~file~is~used~to~temporarily~stand~in~for~the~real~file~that~will~be~"
        "renamed~during~a~Cocoa~case~sensitive~rename";
    for (const bool ignoresCase : {false, true}) {
        RenameBench bench;
        bench.plan("report.txt>REPORT.TXT other.txt>Other.txt " + dummy);
        FailingFileSystem disk;
        disk.ignoresCase = ignoresCase;
        bench.rename();
        EXPECT_EQ(bench.files(), tree("REPORT.TXT=report.txt Other.txt=other.txt " + dummy));
        EXPECT_EQ(disk.nameChangeCount(), ignoresCase ? 6U : 2U);
        EXPECT_EQ(disk.callCount(FileCall::entries), ignoresCase ? 1U : 0U);
    }
}

TEST(RenameFolders, AnotherFolderInThePlaceOfTheOneThatWasReadIsNotTouched) {
    for (const bool byLink : {true, false}) {
        RenameBench bench;
        bench.plan("f/sub/a>b f/sub/b>a outside/a outside/b");
        bench.happens("move f/sub elsewhere");
        bench.happens(byLink ? "link f/sub ../outside" : "move outside f/sub");
        const auto before = bench.disk.tree();
        bench.rename();
        EXPECT_EQ(bench.disk.tree(), before);
        ASSERT_EQ(bench.reports.size(), 1U);
        EXPECT_TRUE(bench.reports[0].message.ends_with(
            "(\"a\": The folder has been replaced by another since the list was read)"));
        EXPECT_EQ(bench.host.counters().numberOfItemsNotRenamed, 2);
    }
}

TEST(RenameVolumes, ThatCannotRefuseATakenNameAreToldOfOnce) {
    RenameBench bench;
    bench.plan("a>A1 b>B1 c>C1");
    FailingFileSystem disk;
    // A file system that renames, but neither links nor makes files.
    disk.before = [](const FileEvent& event) {
        return event.call == FileCall::reserve ? EPERM : refusing(event, true);
    };
    bench.rename();
    EXPECT_EQ(bench.renamed(), 3);
    EXPECT_EQ(bench.host.events,
              std::vector<std::string>{"notice The file system of " + bench.disk.path() +
                                       " cannot refuse a taken name; a file created there in the same moment "
                                       "could be replaced."});
}

} // namespace tavrin::test
