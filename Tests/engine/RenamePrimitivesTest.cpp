#include "engine/RenamePrimitives.h"

#include "RenameBench.h"
#include "RenameWatch.h"
#include "support/DebugLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <set>

namespace tavrin::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

const std::string defaultReason =
    "You may not have sufficient access privileges to rename the file, the file may be on a read-only "
    "medium, "
    "an incompatible external drive or unsupported remote file system or it may be locked.";
const std::string nameTaken = "Another file with this name already exists in this folder.";
const std::string dummyName =
    "this dummy file is used to temporarily stand in for the real file that will be renamed during a Cocoa "
    "case sensitive rename";

class Primitives : public testing::Test {
  protected:
    bool rename(const std::string& from, const std::string& to) {
        return primitives.renameCurrentName(from, disk.path(), to, false);
    }
    /// How each rename reached the item: "folder" or "path".
    std::vector<std::string> ways() const {
        std::vector<std::string> result;
        for (const WatchedRename& one : watch.seen)
            result.emplace_back(one.byPath ? "path" : "folder");
        return result;
    }

    TemporaryFolder disk;
    RenameWatch watch;
    SourceItemChanges changes;
    RenamePrimitives primitives{FileSystem::sharedInstance(), StageProgress(nullptr), changes};
};

} // namespace

TEST_F(Primitives, EachModeRenamesByItsRouteAndFallsBackInItsOrder) {
    struct Case {
        int mode;
        std::vector<std::string> order;
    };
    for (const Case& one :
         {Case{0, {"path", "folder", "path", "path"}}, Case{1, {"folder", "folder", "path", "path"}},
          Case{2, {"path", "folder", "path", "folder"}}, Case{3, {}}, Case{-1, {}}}) {
        SCOPED_TRACE(one.mode);
        primitives.takeSettings(one.mode, true);
        disk.write("a", "content");
        watch.seen.clear();
        watch.before = [](const WatchedRename&) { return EACCES; };
        EXPECT_FALSE(rename("a", "b"));
        EXPECT_EQ(ways(), one.order);
        EXPECT_EQ(primitives.failureReasonString(), defaultReason);

        watch.before = [](const WatchedRename&) { return 0; };
        EXPECT_EQ(rename("a", "b"), !one.order.empty());
        EXPECT_EQ(disk.kind("b").has_value(), !one.order.empty());
        if (disk.kind("b"))
            disk.remove("b");
    }
    EXPECT_EQ(primitives.actuallyRenamedCounter, 3);
}

TEST_F(Primitives, ARenameByTheFileBrowsersRouteCountsAsFailedAndNothingElseIsMoved) {
    disk.write("a", "content");
    watch.before = [this](const WatchedRename&) { return watch.seen.size() < 3 ? EACCES : 0; };
    EXPECT_FALSE(rename("a", "b"));
    EXPECT_EQ(watch.seen.size(), 3U);
    EXPECT_EQ(disk.read("b"), "content");
    EXPECT_EQ(primitives.actuallyRenamedCounter, 0);
}

TEST_F(Primitives, NamesThatAreTakenAreSaidToBe) {
    disk.write("a", "a");
    disk.write("b", "b");
    disk.link("dangling", "nowhere");
    for (const int mode : {0, 1, 2}) {
        SCOPED_TRACE(mode);
        primitives.takeSettings(mode, false);
        for (const char* taken : {"b", "dangling", "a"}) {
            EXPECT_FALSE(rename("a", taken));
            EXPECT_EQ(primitives.failureReasonString(), nameTaken);
        }
        EXPECT_FALSE(rename("missing", "b"));
        EXPECT_EQ(primitives.failureReasonString(), nameTaken);
        EXPECT_FALSE(rename("missing", "c"));
        EXPECT_EQ(primitives.failureReasonString(), defaultReason);
        EXPECT_EQ(disk.tree(),
                  (std::map<std::string, std::string>{{"a", "a"}, {"b", "b"}, {"dangling", "-> nowhere"}}));
    }
}

TEST_F(Primitives, LinksAreRefusedWithoutATry) {
    disk.link("link", disk.write("a", "a"));
    disk.link("folder link", disk.makeFolder("f"));
    for (const int mode : {0, 1, 2, 3}) {
        primitives.takeSettings(mode, false);
        for (const char* link : {"link", "folder link"}) {
            EXPECT_FALSE(rename(link, "b"));
            EXPECT_EQ(primitives.failureReasonString(),
                      "This file is a symbolic link and for safety reasons, Tavrin will not rename symbolic "
                      "links.");
        }
    }
    EXPECT_TRUE(watch.seen.empty());
}

TEST_F(Primitives, NamesThatNoFileCanBearMoveNothing) {
    for (const int mode : {0, 1, 2}) {
        primitives.takeSettings(mode, false);
        disk.write("f/a", "a");
        for (const std::string& name :
             {std::string(), std::string("."), std::string(".."), std::string("b\0c", 3), std::string("../b"),
              std::string("/b"), std::string(256, 'x'),
              std::string(128, '\xC3') + std::string(128, '\xA9')}) {
            SCOPED_TRACE(name);
            EXPECT_FALSE(primitives.renameCurrentName("a", disk.path("f"), name, false));
            EXPECT_EQ(primitives.failureReasonString(), defaultReason);
            EXPECT_FALSE(primitives.renameCurrentName(name, disk.path("f"), "b", false));
        }
        EXPECT_EQ(disk.tree(), (std::map<std::string, std::string>{{"f/", ""}, {"f/a", "a"}}));
    }
    EXPECT_TRUE(primitives.renameCurrentName("a", disk.path("f"), std::string(255, 'x'), false));
}

TEST_F(Primitives, AChangeOfCaseWorksInFoldersThatIgnoreCase) {
    watch.ignoresCase = true;
    for (const int mode : {0, 1, 2}) {
        SCOPED_TRACE(mode);
        primitives.takeSettings(mode, false);
        disk.write("report.txt", "content");
        EXPECT_TRUE(rename("report.txt", "REPORT.TXT"));
        EXPECT_EQ(disk.tree(), (std::map<std::string, std::string>{{"REPORT.TXT", "content"}}));
        disk.remove("REPORT.TXT");
    }
}

TEST_F(Primitives, AChangeOfCaseLeavesAnotherItemOfThatNameAlone) {
    for (const int mode : {0, 1, 2}) {
        SCOPED_TRACE(mode);
        primitives.takeSettings(mode, false);
        disk.write("a", "small");
        disk.write("A", "capital");
        EXPECT_FALSE(rename("a", "A"));
        EXPECT_EQ(primitives.failureReasonString(), nameTaken);
        EXPECT_TRUE(watch.seen.empty());
        EXPECT_EQ(disk.tree(), (std::map<std::string, std::string>{{"a", "small"}, {"A", "capital"}}));
    }
}

TEST_F(Primitives, AnItemThatCannotLeaveItsDummyNameIsBroughtBack) {
    disk.write("a", "content");
    watch.before = [](const WatchedRename& one) { return one.to == "A" ? EIO : 0; };
    EXPECT_FALSE(rename("a", "A"));
    EXPECT_EQ(disk.tree(), (std::map<std::string, std::string>{{"a", "content"}}));
}

/// It stays under the dummy name when its old name has been taken meanwhile, and what took it is not taken
/// for it by the routes that would follow.
TEST_F(Primitives, AnItemThatCannotBeBroughtBackIsNotMistakenForAnother) {
    disk.write("a", "content");
    watch.before = [this](const WatchedRename& one) {
        if (one.to != "A")
            return 0;
        std::ofstream(disk.path("a")) << "stranger";
        return EIO;
    };
    EXPECT_FALSE(rename("a", "A"));
    EXPECT_EQ(disk.tree(), (std::map<std::string, std::string>{{"a", "stranger"}, {dummyName, "content"}}));
}

TEST_F(Primitives, WhatIsNotTheExpectedItemIsLeftAlone) {
    disk.write("a", "content");
    EXPECT_FALSE(primitives.renameCurrentName("a", disk.path(), "b", false, FileIdentity{1, 1}));
    EXPECT_TRUE(watch.seen.empty());
}

TEST_F(Primitives, LogsItsSteps) {
    struct Lines : LogSink {
        std::vector<std::string> lines;
        void write(std::string_view line) override { lines.emplace_back(line); }
    } sink;
    LogSink* const former = setDebugLogSink(&sink);
    setDebugLogIsOn(true);
    disk.write("a:b", "");
    primitives.takeSettings(3, false);
    rename("a:b", "c:d");
    setDebugLogIsOn(false);
    setDebugLogSink(former);
    EXPECT_THAT(sink.lines,
                ElementsAre("renameCurrentName: a/b atPath: " + disk.path("a:b") + " toNewName: c/d",
                            "failed to rename file using default mode: " + disk.path("c:d"),
                            "success after trying alternative methods: 0"));
}

/// What actions can make of a name and no file can bear: reported, nothing moved, the rest goes on.
TEST(RenameFinalNames, ThatCannotBeAreReported) {
    RenameBench bench;
    const std::vector<std::pair<std::string, std::u16string>> plan{
        {"empty", u""},
        {"dot", u"."},
        {"dots", u".."},
        {"nul", std::u16string(u"a\0b", 3)},
        {"long", std::u16string(256, u'x')},
        {"torn \U0001F4A9", u"torn \xD83D"},
        {"torn \U0001F480 too", u"\xDC80 too"},
        {"stray", u"stray\xDCE9"},
        {"utf \xC3", u"utf \xDCC3\xDCA9"},
    };
    std::vector<std::string> names;
    for (const auto& [name, finalName] : plan)
        names.push_back(name);
    names.emplace_back("fine");
    names.emplace_back("kept \xE9");
    bench.makeAndRead(names);
    for (const auto& [name, finalName] : plan)
        bench.setFinalName(name, finalName);
    bench.setFinalName("fine", u"renamed");
    bench.setFinalName("kept \xE9", u"still \xDCE9");
    bench.rename();
    EXPECT_EQ(bench.reports.size(), plan.size());
    std::set<std::string> reported;
    for (const ProblemReport& report : bench.reports) {
        EXPECT_EQ(report.title, "Could not change a file name");
        EXPECT_EQ(report.message, defaultReason);
        reported.insert(report.fullPath.substr(bench.disk.path().size() + 1));
    }
    RenameBench::Tree after{{"renamed", "fine"}, {"still \xE9", "kept \xE9"}};
    for (const auto& [name, finalName] : plan) {
        after.emplace(name, name);
        EXPECT_TRUE(reported.contains(name)) << name;
    }
    EXPECT_EQ(bench.files(), after);
}

TEST(RenameMode, IsSwitchedToTheNewestOnceOnly) {
    RenameBench bench;
    bench.host.set("renameMode", 2);
    bench.makeAndRead({"a"});
    bench.rename();
    EXPECT_EQ(bench.host.settings.getRenameMode(), 0);
    bench.host.set("renameMode", 2);
    bench.rename();
    EXPECT_EQ(bench.host.settings.getRenameMode(), 2);
}

} // namespace tavrin::test
