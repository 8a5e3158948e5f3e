#include "RenameBench.h"
#include "common/FailingFileSystem.h"
#include "support/application/DebugLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>

namespace tavrin::test {

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;
namespace fs = std::filesystem;

const std::string defaultReason =
    "You may not have sufficient access privileges to rename the file, the file may be on a read-only "
    "medium, "
    "an incompatible external drive or unsupported remote file system or it may be locked.";
const std::string linkReason =
    "This file is a symbolic link and for safety reasons, Tavrin will not rename symbolic links.";
const std::string taken = "Another file with this name already exists in this folder.";

/// One item that is to get a name, and what the user is told when it does not.
struct Case {
    const char* title;
    std::string name;
    std::u16string finalName;
    std::string message; ///< empty: it works
    std::function<void(TemporaryFolder&)> sinceReading = [](TemporaryFolder&) {};
};

void replace(TemporaryFolder& disk, const std::string& name, const std::function<void()>& make) {
    fs::remove_all(disk.path(name));
    make();
}

const std::vector<Case> cases{
    {"empty", "a", u"", defaultReason + " (The new name is empty)"},
    {"the folder itself", "a", u".", defaultReason + " (This name stands for a folder itself)"},
    {"the folder above", "a", u"..", defaultReason + " (This name stands for a folder itself)"},
    {"the end of a name", "a", std::u16string(u"b\0c", 3),
     defaultReason + " (It holds a character that ends a name)"},
    {"too long in bytes", "a", std::u16string(87, u'\u4e00'),
     defaultReason + " (File name too long: 261 of 255 bytes)"},
    {"just short enough", "a", std::u16string(85, u'\u4e00'), ""},
    {"a high half", "a\U0001F4A9", u"a\xD83D", defaultReason + " (It cuts a character in two)"},
    {"a low half that looks like a byte", "a\U0001F480", u"a\xDC80",
     defaultReason + " (It cuts a character in two)"},
    {"a byte that the name has not", "a", u"a\xDCE9", defaultReason + " (It cuts a character in two)"},
    {"a byte that the name has", "a \xE9", u"b \xDCE9", ""},
    {"a taken name", "a", u"z", taken},
    {"a name taken by a dangling link", "a", u"new", taken,
     [](TemporaryFolder& disk) { disk.link("new", "nowhere"); }},
    {"a change of case to a name of another", "a", u"A", taken,
     [](TemporaryFolder& disk) { disk.write("A", "other"); }},
    {"a change of case to another name of the same file", "a", u"A", taken,
     [](TemporaryFolder& disk) { fs::create_hard_link(disk.path("a"), disk.path("A")); }},
    {"gone", "a", u"new",
     defaultReason + " (No such file: it has been removed or renamed since the list was read)",
     [](TemporaryFolder& disk) { disk.remove("a"); }},
    {"saved anew by replacing", "a", u"new", "",
     [](TemporaryFolder& disk) {
         disk.write("saved", "a");
         fs::rename(disk.path("saved"), disk.path("a"));
     }},
    {"a folder now", "a", u"new",
     defaultReason + " (It was a file when the list was read, and is a folder now)",
     [](TemporaryFolder& disk) { replace(disk, "a", [&] { disk.makeFolder("a"); }); }},
    {"a link now", "a", u"new", linkReason + " (It was a file when the list was read, and is a link now)",
     [](TemporaryFolder& disk) { replace(disk, "a", [&] { disk.link("a", "z"); }); }},
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
    for (const int mode : {0, 1, 2}) {
        for (const int way : {0, 1, 2}) {
            for (const Case& one : cases) {
                SCOPED_TRACE(one.title + std::string(", mode ") + std::to_string(mode) + ", way " +
                             std::to_string(way));
                RenameBench bench;
                bench.host.set("renameMode", mode);
                bench.host.defaults.setObject("alreadySwitchedToLionModeOnce", true);
                bench.makeAndRead({one.name, "z"});
                one.sinceReading(bench.disk);
                bench.setFinalName(one.name, one.finalName);
                const auto before = bench.disk.tree();
                FailingFileSystem disk;
                disk.before = [&](const FileEvent& event) {
                    return way == 0 ? 0 : refusing(event, way == 2);
                };
                bench.rename();
                const bool works = one.message.empty();
                EXPECT_EQ(bench.renamed(), works ? 1 : 0);
                EXPECT_EQ(bench.host.counters().numberOfItemsNotRenamed, works ? 0 : 1);
                EXPECT_EQ(bench.disk.tree() == before, !works);
                ASSERT_EQ(bench.reports.size(), works ? 0U : 1U);
                if (!works) {
                    EXPECT_EQ(bench.reports[0].message, one.message);
                    EXPECT_EQ(bench.reports[0].title, "Could not change a file name");
                }
            }
        }
    }
}

TEST(RenameReasons, ALinkAndAKindThatIsNoneAreRefusedWithoutATry) {
    RenameBench bench;
    bench.make({"f/a"});
    bench.disk.link("f/link", "a");
    bench.disk.link("f/folder link", "..");
    bench.read({"f"});
    bench.setFinalName("f/link", u"new link");
    bench.setFinalName("f/folder link", u"new folder link");
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
            bench.makeAndRead({"a"});
            bench.setFinalName("a", u"b");
            FailingFileSystem disk;
            disk.failKind(FileCall::rename, error);
            bench.rename();
            EXPECT_EQ(disk.nameChangeCount(), error == EEXIST && tries > 0 ? 1U : tries);
            EXPECT_EQ(bench.files(), untouched({"a"}));
            ASSERT_EQ(bench.reports.size(), 1U);
            if (error == EROFS && tries > 0) {
                EXPECT_THAT(bench.reports[0].message, EndsWith("(Read-only file system)"));
            }
        }
    }
}

/// The third call, by the file browser's route, works and does not count: it is taken back, and the next
/// route does it. If neither works the item has its name, and that is said.
TEST(RenameModes, ARouteThatDoesNotCountTakesItsMoveBack) {
    for (const bool canGoBack : {true, false}) {
        RenameBench bench;
        bench.makeAndRead({"a"});
        bench.setFinalName("a", u"b");
        FailingFileSystem disk;
        int calls = 0;
        disk.before = [&](const FileEvent& event) {
            if (event.call != FileCall::rename)
                return 0;
            ++calls;
            return calls < 3 || (calls == 4 && !canGoBack) ? EIO : 0;
        };
        bench.rename();
        EXPECT_EQ(calls, canGoBack ? 5 : 4);
        EXPECT_EQ(bench.files(), (RenameBench::Tree{{"b", "a"}}));
        EXPECT_EQ(bench.renamed(), 1);
        EXPECT_TRUE(bench.reports.empty());
    }
}

/// One look through the folder tells for all its items whether case counts there.
TEST(RenameCase, ChangesDirectlyOrByAStandInThatIsFree) {
    for (const bool ignoresCase : {false, true}) {
        RenameBench bench;
        const std::string dummy =
            "this dummy file is used to temporarily stand in for the real file that will be renamed during a "
            "Cocoa case sensitive rename";
        bench.makeAndRead({"report.txt", "other.txt", dummy});
        bench.setFinalName("report.txt", u"REPORT.TXT");
        bench.setFinalName("other.txt", u"Other.txt");
        FailingFileSystem disk;
        disk.ignoresCase = ignoresCase;
        bench.rename();
        EXPECT_EQ(
            bench.files(),
            (RenameBench::Tree{{"REPORT.TXT", "report.txt"}, {"Other.txt", "other.txt"}, {dummy, dummy}}));
        EXPECT_EQ(disk.nameChangeCount(), ignoresCase ? 6U : 2U);
        EXPECT_EQ(disk.callCount(FileCall::entries), ignoresCase ? 1U : 0U);
    }
}

TEST(RenameCase, WhatCannotLeaveItsStandInIsBroughtBackOrSaidToBeThere) {
    for (const std::size_t failures : {1U, 2U, 3U}) {
        RenameBench bench;
        bench.makeAndRead({"a"});
        bench.setFinalName("a", u"A");
        FailingFileSystem disk;
        disk.ignoresCase = true;
        std::size_t left = failures;
        disk.before = [&](const FileEvent& event) {
            return event.call == FileCall::rename && event.name != "a" && left > 0 && left-- > 0 ? EIO : 0;
        };
        bench.rename();
        const auto files = bench.files();
        ASSERT_EQ(files.size(), 1U);
        const std::string lies = files.begin()->first;
        if (bench.reports.empty()) {
            EXPECT_EQ(lies, "A");
        } else if (lies != "a") {
            EXPECT_THAT(bench.reports[0].message, testing::HasSubstr("under the name \"" + lies + "\""));
        }
    }
}

TEST(RenameFolders, AnotherFolderInThePlaceOfTheOneThatWasReadIsNotTouched) {
    for (const bool byLink : {true, false}) {
        RenameBench bench;
        bench.make({"f/sub/a", "f/sub/b", "outside/a", "outside/b"});
        bench.read({"f"});
        for (const char* name : {"f/sub/a", "f/sub/b"})
            bench.setFinalName(name, name[6] == 'a' ? u"b" : u"a");
        fs::rename(bench.disk.path("f/sub"), bench.disk.path("elsewhere"));
        if (byLink)
            bench.disk.link("f/sub", "../outside");
        else
            fs::rename(bench.disk.path("outside"), bench.disk.path("f/sub"));
        const auto before = bench.disk.tree();
        bench.rename();
        EXPECT_EQ(bench.disk.tree(), before);
        ASSERT_EQ(bench.reports.size(), 1U);
        EXPECT_THAT(bench.reports[0].message,
                    EndsWith("(\"a\": The folder has been replaced by another since the list was read)"));
        EXPECT_EQ(bench.host.counters().numberOfItemsNotRenamed, 2);
    }
}

TEST(RenameVolumes, ThatCannotRefuseATakenNameAreToldOfOnce) {
    RenameBench bench;
    bench.makeAndRead({"a", "b", "c"});
    for (const char* name : {"a", "b", "c"})
        bench.setFinalName(name, u"new " + std::u16string(1, static_cast<char16_t>(name[0])));
    FailingFileSystem disk;
    // A file system that renames, but neither links nor makes files.
    disk.before = [](const FileEvent& event) {
        return event.call == FileCall::reserve ? EPERM : refusing(event, true);
    };
    bench.rename();
    EXPECT_EQ(bench.renamed(), 3);
    EXPECT_THAT(bench.host.events,
                ElementsAre("notice The file system of " + bench.disk.path() +
                            " cannot refuse a taken name; a file created there in the same moment could be "
                            "replaced."));
}

TEST(RenameMode, IsSwitchedToTheNewestOnceOnly) {
    RenameBench bench;
    bench.host.set("renameMode", 2);
    bench.makeAndRead({"a"});
    bench.rename();
    EXPECT_EQ(bench.host.settings.values().renameMode, 0);
    bench.host.set("renameMode", 2);
    bench.rename();
    EXPECT_EQ(bench.host.settings.values().renameMode, 2);
}

} // namespace tavrin::test
