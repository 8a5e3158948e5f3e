#include "StageTest.h"
#include "common/FailingFileSystem.h"
#include "engine/reading/CleanUpStages.h"
#include "engine/reading/ReadItemsIntoDatabaseStage.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <functional>
#include <ostream>

namespace tavrin::test {
namespace {

/// What lies on disk ("name", "name/" for an empty folder, "name -> target", "name: content"), what is on the
/// list, and the rows that come of it: "F" or "G" for the entity, the path, then "root" and "folder"; and
/// what is left out since it is there under another path.
struct ReadCase {
    const char* name;
    std::vector<std::string> onDisk;
    std::vector<std::string> listed;
    bool subfolders;
    std::vector<std::string> rows;
    std::vector<std::string> leftOut = {}; ///< paths
};

std::ostream& operator<<(std::ostream& out, const ReadCase& test) { return out << test.name; }

class ReadItemsTest : public StageTest {
  protected:
    void make(const std::string& line) {
        if (const auto arrow = line.find(" -> "); arrow != std::string::npos)
            folder.link(line.substr(0, arrow), line.substr(arrow + 4));
        else if (const auto colon = line.find(": "); colon != std::string::npos)
            folder.write(line.substr(0, colon), line.substr(colon + 2));
        else if (line.ends_with("/"))
            folder.makeFolder(line.substr(0, line.size() - 1));
        else
            folder.write(line);
    }

    std::vector<std::string> rows() {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::storeWins);
        std::vector<std::string> lines;
        for (const RowId id : context.fetch({FetchEntity::node, Predicate::always(), {}, 0})) {
            const NodeRow row = context.row(id);
            const std::string path = context.fullPath(id);
            std::string line = row.entity == NodeEntity::file ? "F " : "G ";
            line += relative(path);
            line += row.root ? " root" : "";
            line += row.treatAsFolder ? " folder" : "";
            lines.push_back(line);
            if (row.entity == NodeEntity::file) {
                EXPECT_EQ(context.fullPath(row.parent), context.parentPath(id)) << path;
            }
        }
        return lines;
    }
};

class ReadCases : public ReadItemsTest, public ::testing::WithParamInterface<ReadCase> {};

TEST_P(ReadCases, MakesTheRows) {
    const ReadCase& test = GetParam();
    for (const std::string& line : test.onDisk)
        make(line);
    for (const std::string& name : test.listed)
        host.add({folder.path(name)});
    host.set("processSubfolders", test.subfolders ? 1 : 0);
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    std::vector<std::string> found = rows();
    // A ghost comes before or after its children, whichever the store numbers first.
    std::stable_partition(found.begin(), found.end(), [](const std::string& row) { return row[0] == 'G'; });
    EXPECT_EQ(found, test.rows);
    EXPECT_EQ(
        host.counters().totalNumberOfFilesSelectedOrNot,
        std::count_if(test.rows.begin(), test.rows.end(), [](const auto& row) { return row[0] == 'F'; }));
    EXPECT_TRUE(host.counters().needToRedoConflictResolution);
    std::vector<std::string> leftOut;
    for (const std::string& error : host.errors())
        leftOut.push_back(relative(error.substr(error.rfind(" | ") + 3)));
    EXPECT_EQ(leftOut, test.leftOut);

    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(rows().size(), test.rows.size()) << "read twice";
}

const ReadCase readCases[] = {
    {"two files of one folder share a ghost",
     {"a/x", "a/y", "a/z"},
     {"a/y", "a/x"},
     true,
     {"G a folder", "F a/y root", "F a/x root"}},
    {"a folder without subfolders", {"a/x", "a/b/y"}, {"a"}, false, {"G / folder", "F a root folder"}},
    {"depth first, by bytes, a folder before its contents",
     {"a/b/c/1", "a/b/2", "a/B", "a/b.txt", "a/e/"},
     {"a"},
     true,
     {"G / folder", "F a root folder", "F a/B", "F a/b folder", "F a/b/2", "F a/b/c folder", "F a/b/c/1",
      "F a/b.txt", "F a/e folder"}},
    {"invisible things below a folder are left out with all they hold",
     {"a/.git/x", "a/.x", "a/y"},
     {"a"},
     true,
     {"G / folder", "F a root folder", "F a/y"}},
    {"a folder's list of hidden names",
     {"a/.hidden: b\nx\n", "a/b/1", "a/x", "a/y", "a/c/x"},
     {"a"},
     true,
     {"G / folder", "F a root folder", "F a/c folder", "F a/c/x", "F a/y"}},
    {"an invisible listed folder has no row, nor have its bundles",
     {".a/x", ".a/b/y", ".a/t.app/z"},
     {".a"},
     true,
     {"G .a folder", "F .a/b folder", "F .a/b/y", "F .a/x"}},
    {"invisible listed files",
     {".x", "a/.hidden: y", "a/y", "a/z"},
     {".x", "a/y", "a/z"},
     true,
     {"G a folder", "F a/z root"}},
    {"a listed bundle is one file", {"t.app/Contents/x"}, {"t.app"}, true, {"G / folder", "F t.app root"}},
    {"a bundle at the end of a walk",
     {"a/b", "a/t.app/Contents/x"},
     {"a"},
     true,
     {"G / folder", "F a root folder", "F a/b", "F a/t.app"}},
    {"links found are rows and are not followed",
     {"a/real/x", "a/loop -> ..", "a/folder -> real", "a/gone -> nothing", "a/file -> real/x"},
     {"a"},
     true,
     {"G / folder", "F a root folder", "F a/file", "F a/folder folder", "F a/gone", "F a/loop folder",
      "F a/real folder", "F a/real/x"}},
    {"a folder and a link to it",
     {"a/x", "a/b/y", "link -> a"},
     {"a", "link"},
     true,
     {"G / folder", "F a root folder", "F a/b folder", "F a/b/y", "F a/x", "F link root folder"},
     {"link"}},
    {"what a link leads to, and a part of it before",
     {"a/x", "a/b/y", "a/c", "link -> a"},
     {"a/b", "link"},
     true,
     {"G a folder", "G / folder", "F a/b root folder", "F a/b/y", "F link root folder", "F link/c",
      "F link/x"},
     {"link/b"}},
    {"items of one folder under two paths, in turn",
     {"a/x", "a/y", "a/z", "link -> a"},
     {"a/x", "link/y", "a/y", "link/x", "a/z", "link/z"},
     false,
     {"G a folder", "G link folder", "F a/x root", "F link/y root", "F a/z root"},
     {"a/y", "link"}},
    {"hard links are items of their own",
     {"a/x", "b/x", "link -> a"},
     {"a", "b", "link/x"},
     true,
     {"G / folder", "G link folder", "F a root folder", "F a/x", "F b root folder", "F b/x"},
     {"link/x"}},
    {"bytes that are no text",
     {"a/\xFF\xFEx", "a/\xC3\xA9"},
     {"a"},
     true,
     {"G / folder", "F a root folder", "F a/\xC3\xA9", "F a/\xFF\xFEx"}},
};

INSTANTIATE_TEST_SUITE_P(Trees, ReadCases, ::testing::ValuesIn(readCases));

TEST_F(ReadItemsTest, AnEmptyListInterrupts) { EXPECT_FALSE(run<ReadItemsIntoDatabaseStage>()); }

TEST_F(ReadItemsTest, AVanishedItemIsAFile) {
    host.add({folder.write("a/x"), folder.write("b/y")});
    folder.remove("a/x");
    std::filesystem::remove_all(folder.path("b"));
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(host.finalNames().size(), 2U);
}

TEST_F(ReadItemsTest, SubfoldersAreReadWhenTheyAreWantedLater) {
    folder.write("a/x");
    host.add({folder.path("a")});
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    host.set("processSubfolders", 1);
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(rows(), (std::vector<std::string>{"G / folder", "F a root folder", "F a/x"}));
    folder.write("a/new");
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(rows().size(), 3U);
}

TEST_F(ReadItemsTest, ManualOrderRisesFromRunToRun) {
    host.add({folder.write("a"), folder.write("b")});
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    host.add({folder.write("c")});
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::storeWins);
    std::vector<std::int32_t> order;
    for (const RowId id : context.fetch({FetchEntity::file, Predicate::always(), {}, 0}))
        order.push_back(context.row(id).manualOrder);
    EXPECT_EQ(order, (std::vector<std::int32_t>{0, 1, 2}));
}

TEST_F(ReadItemsTest, WhicheverLookFailsNothingIsTakenForWhatItIsNot) {
    folder.write("a/b/x");
    folder.write("c/d");
    folder.link("link", folder.path("c"));
    host.set("processSubfolders", 1);
    FailingFileSystem files;
    std::vector<std::string> whole;
    for (std::size_t call = 0;; ++call) {
        host.clearList();
        host.add({folder.path("a"), folder.path("link")});
        files.reset();
        files.failCall(call, EIO);
        ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
        std::vector<std::string> found = rows();
        std::ranges::sort(found);
        if (call == 0)
            whole = found;
        else if (files.failureCount() == 0)
            break;
        EXPECT_TRUE(std::ranges::includes(whole, found)) << call;
        EXPECT_TRUE(found == whole || !host.errors().empty()) << call;
    }
}

TEST_F(ReadItemsTest, AFolderThatCannotBeReadIsReportedAndTheRestGoesOn) {
    folder.write("a/b/x");
    folder.write("a/c");
    host.add({folder.path("a")});
    host.set("processSubfolders", 1);
    FailingFileSystem files;
    files.failKind(FileCall::entries, EACCES, 1);
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(rows(), (std::vector<std::string>{"G / folder", "F a root folder"}));
    ASSERT_TRUE(run<CleanUpProcessingErrorsStage>());
    files.failKind(FileCall::entries, EACCES, 2);
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(rows(), (std::vector<std::string>{"G / folder", "F a root folder", "F a/b folder", "F a/c"}));
    EXPECT_EQ(host.errors(),
              (std::vector<std::string>{"Could not read a folder | " + std::string(std::strerror(EACCES)) +
                                        " | " + folder.path("a/b")}));
}

/// Lets a folder seem to be one that lies above it, as a bind mount does.
class LoopingFileSystem : public FailingFileSystem {
  public:
    std::string loop;
    std::string target;
    int openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) override {
        return FailingFileSystem::openFolder(path == loop ? target : path, into);
    }
};

TEST_F(ReadItemsTest, AFolderInsideItselfIsNotEntered) {
    folder.write("a/b/x");
    folder.makeFolder("a/b/loop");
    folder.write("a/z");
    host.add({folder.path("a")});
    host.set("processSubfolders", 1);
    LoopingFileSystem files;
    files.loop = folder.path("a/b/loop");
    files.target = folder.path("a");
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(rows(), (std::vector<std::string>{"G / folder", "F a root folder", "F a/b folder",
                                                "F a/b/loop folder", "F a/b/x", "F a/z"}));
    ASSERT_EQ(host.errors().size(), 1U);
    EXPECT_NE(host.errors().front().find("lies inside itself"), std::string::npos);
}

/// Tells the test of each folder that is opened.
class WatchedFileSystem : public FailingFileSystem {
  public:
    std::function<void(const std::string& path)> onOpen;
    int openFolder(const std::string& path, std::unique_ptr<OpenFolder>& into) override {
        onOpen(path);
        return FailingFileSystem::openFolder(path, into);
    }
};

TEST_F(ReadItemsTest, AnItemThatLeavesTheListDuringItsWalkLeavesNoRows) {
    folder.write("a/b/x");
    const std::string item = folder.path("a");
    host.add({item, folder.write("c")});
    WatchedFileSystem files;
    files.onOpen = [&](const std::string& path) {
        if (path == folder.path("a/b"))
            host.sourceItems.removeItem(item);
    };
    host.set("processSubfolders", 1);
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(rows(), (std::vector<std::string>{"G / folder", "F c root"})) << "its own row was new";

    host.add({item});
    host.set("processSubfolders", 0);
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    host.set("processSubfolders", 1);
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(rows(), (std::vector<std::string>{"G / folder", "F c root"})) << "its own row was known";

    files.onOpen = [&](const std::string& path) {
        if (path != folder.path("a/b"))
            return;
        host.sourceItems.removeItem(item);
        host.add({item});
    };
    host.add({item});
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    files.onOpen = [](const std::string&) {};
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(rows().size(), 5U) << "added again meanwhile, it is read again";
}

TEST_F(ReadItemsTest, ManyItemsOfOneFolderCostOneCallEach) {
    constexpr int items = 50;
    for (int i = 0; i < items; ++i)
        host.add({folder.write("f" + std::to_string(i))});
    FailingFileSystem files;
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_LE(files.callCount(), items + 4U);
    files.reset();
    ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    EXPECT_EQ(files.callCount(), 0U) << "nothing new, so nothing to look at";
}

} // namespace
} // namespace tavrin::test
