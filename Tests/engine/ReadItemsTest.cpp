#include "RenameBench.h"
#include "common/FailingFileSystem.h"
#include "engine/reading/AddFileSortingDataStage.h"
#include "engine/reading/ReadItemsIntoDatabaseStage.h"

namespace tavrin::test {
namespace {

struct ReadBench : StageBench {
    void make(const std::string& line) {
        const std::size_t mark = line.find_first_of(">=");
        if (mark == std::string::npos && line.ends_with("/")) {
            folder.makeFolder(line.substr(0, line.size() - 1));
        } else if (mark != std::string::npos && line[mark] == '>') {
            folder.link(line.substr(0, mark), line.substr(mark + 1));
        } else {
            std::string content = mark == std::string::npos ? "" : line.substr(mark + 1);
            std::ranges::replace(content, ',', '\n');
            folder.write(line.substr(0, mark), content);
        }
    }
    void read(bool subfolders = true) {
        host.set("processSubfolders", subfolders ? 1 : 0);
        ASSERT_TRUE(run<ReadItemsIntoDatabaseStage>());
    }

    /// In the words of a case, the ghosts first: the store may number them in between.
    std::vector<std::string> rows() {
        StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::storeWins);
        std::vector<std::string> lines;
        for (const RowId id : context.fetch({FetchEntity::node, Predicate::always(), {}, 0})) {
            const NodeRow row = context.row(id);
            const std::string path = context.fullPath(id);
            if (row.entity == NodeEntity::file) {
                lines.push_back(relative(path) + (row.treatAsFolder ? "/" : "") + (row.root ? "!" : ""));
                EXPECT_EQ(context.fullPath(row.parent), context.parentPath(id)) << path;
            } else {
                lines.push_back("(" + relative(path) + ")");
            }
        }
        std::ranges::stable_partition(lines, [](const std::string& line) { return line[0] == '('; });
        return lines;
    }
};

class ReadItemsTest : public testing::Test, public ReadBench {};

/// What lies on disk ("name", "name/" for an empty folder, "name>target" for a link, "name=content"), what is
/// on the list, and the rows that come of it: "(path)" for a ghost, else the path, with "/" for a folder and
/// "!" for a root. In paths "." is the test's folder, ".." what lies above; "~" is a space.
TEST(ReadItems, MakesTheRows) {
    struct Case {
        const char *name, *onDisk, *listed;
        bool subfolders;
        const char* rows;
        const char* leftOut = ""; ///< since it is there under another path
        const char* gone = "";    ///< before they are read
    };
    const Case cases[] = {
        {"two files of one folder share a ghost", "a/x a/y a/z", "a/y a/x", true, "(a) a/y! a/x!"},
        {"a folder without subfolders", "a/x a/b/y", "a", false, "(/) a/!"},
        {"depth first, by bytes, a folder before its contents", "a/b/c/1 a/b/2 a/B a/b.txt a/e/", "a", true,
         "(/) a/! a/B a/b/ a/b/2 a/b/c/ a/b/c/1 a/b.txt a/e/"},
        {"invisible things below a folder are left out with all they hold", "a/.git/x a/.x a/y", "a", true,
         "(/) a/! a/y"},
        {"a folder's list of hidden names", "a/.hidden=b,x, a/b/1 a/x a/y a/c/x", "a", true,
         "(/) a/! a/c/ a/c/x a/y"},
        {"an invisible listed folder has no row, nor have its bundles", ".a/x .a/b/y .a/t.app/z", ".a", true,
         "(.a) .a/b/ .a/b/y .a/x"},
        {"invisible listed files", ".x a/.hidden=y a/y a/z", ".x a/y a/z", true, "(a) a/z!"},
        {"a listed bundle is one file", "t.app/Contents/x", "t.app", true, "(/) t.app!"},
        {"a bundle at the end of a walk", "a/b a/t.app/Contents/x", "a", true, "(/) a/! a/b a/t.app"},
        {"links found are rows and are not followed",
         "a/real/x a/loop>.. a/folder>real a/gone>nothing a/file>real/x", "a", true,
         "(/) a/! a/file a/folder/ a/gone a/loop/ a/real/ a/real/x"},
        {"a folder and a link to it", "a/x a/b/y link>a", "a link", true, "(/) a/! a/b/ a/b/y a/x link/!",
         "link"},
        {"what a link leads to, and a part of it before", "a/x a/b/y a/c link>a", "a/b link", true,
         "(a) (/) a/b/! a/b/y link/! link/c link/x", "link/b"},
        {"items of one folder under two paths, in turn", "a/x a/y a/z link>a",
         "a/x link/y a/y link/x a/z link/z", false, "(a) (link) a/x! link/y! a/z!", "a/y link"},
        {"hard links are items of their own", "a/x b/x link>a", "a b link/x", true,
         "(/) (link) a/! a/x b/! b/x", "link/x"},
        {"what has vanished since counts as files", "a/x b/y c/", "a/x b/y c", true,
         "(a) (b) (/) a/x! b/y! c!", "", "a/x b c"},
        {"bytes that are no text", "a/\xFF\xFEx a/\xC3\xA9", "a", true, "(/) a/! a/\xC3\xA9 a/\xFF\xFEx"},

    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        ReadBench bench;
        for (const std::string& line : split(test.onDisk))
            bench.make(line);
        for (const std::string& name : split(test.listed))
            bench.host.add({bench.folder.path(name)});
        for (const std::string& name : split(test.gone))
            std::filesystem::remove_all(bench.folder.path(name));
        bench.read(test.subfolders);
        EXPECT_EQ(bench.rows(), split(test.rows));
        EXPECT_EQ(bench.host.counters().totalNumberOfFilesSelectedOrNot,
                  std::ranges::count_if(split(test.rows), [](const auto& row) { return row[0] != '('; }));
        EXPECT_TRUE(bench.host.counters().needToRedoConflictResolution);
        std::vector<std::string> leftOut;
        for (const std::string& error : bench.host.errors())
            leftOut.push_back(bench.relative(error.substr(error.rfind(" | ") + 3)));
        EXPECT_EQ(leftOut, split(test.leftOut));
        bench.read(test.subfolders);
        EXPECT_EQ(bench.rows(), split(test.rows)) << "and not twice";
    }
}

TEST_F(ReadItemsTest, LaterRunsReadWhatIsNewInTheOrderOfTheList) {
    folder.write("a/x");
    host.add({folder.path("a")});
    read(false);
    host.add({folder.write("c")});
    read();
    folder.write("a/new");
    read();
    EXPECT_EQ(rows(), split("(/) a/! a/x c!"));
    StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::storeWins);
    std::int32_t order = 0;
    for (const RowId id : context.fetch({FetchEntity::file, Predicate::always(), {}, 0}))
        EXPECT_EQ(context.row(id).manualOrder, order++);
}

/// It is told, and what does not lie there is read all the same.
TEST_F(ReadItemsTest, WhicheverLookFailsNothingIsTakenForWhatItIsNot) {
    folder.write("a/b/x");
    folder.write("a/c");
    folder.write("d/e");
    folder.link("link", folder.path("d"));
    FailingFileSystem files;
    std::vector<std::string> whole;
    bool hasFailed = true;
    bool isRootShut = false;
    for (std::size_t call = 0; hasFailed; ++call) {
        SCOPED_TRACE(call);
        host.clearList();
        host.add({folder.path("a"), folder.path("link")});
        std::size_t seen = 0;
        std::string place;
        files.before = [&](const FileEvent& event) {
            if (++seen != call)
                return 0;
            const bool isFolder = event.name.empty() || event.name == ".";
            isRootShut = event.call == FileCall::openFolder && event.folder == folder.path("a");
            place = relative(isFolder ? event.folder : event.folder + "/" + event.name);
            return EIO;
        };
        read();
        files.before = [](const FileEvent&) { return 0; };
        hasFailed = seen >= call;
        std::vector<std::string> found = rows();
        std::ranges::sort(found);
        if (call == 0)
            whole = found;
        EXPECT_TRUE(std::ranges::includes(whole, found));
        if (std::exchange(isRootShut, false)) {
            read();
            EXPECT_EQ(rows().size(), whole.size()) << "it is tried again";
        }
        EXPECT_TRUE(found == whole || !host.errors().empty());
        for (const std::string& row : whole) {
            EXPECT_TRUE(std::ranges::count(found, row) == 1 || place == "/" || row.starts_with(place))
                << row << " for " << place;
        }
    }
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
    LoopingFileSystem files;
    files.loop = folder.path("a/b/loop");
    files.target = folder.path("a");
    read();
    EXPECT_EQ(rows(), split("(/) a/! a/b/ a/b/loop/ a/b/x a/z"));
    ASSERT_EQ(host.errors().size(), 1U);
    EXPECT_NE(host.errors().front().find("lies inside itself"), std::string::npos);
}

TEST_F(ReadItemsTest, AnItemThatLeavesTheListDuringItsWalkLeavesNoRows) {
    folder.write("a/b/x");
    const std::string item = folder.path("a");
    host.add({item, folder.write("c")});
    FailingFileSystem files;
    bool comesBack = false;
    files.before = [&](const FileEvent& event) {
        if (event.call == FileCall::openFolder && event.folder == folder.path("a/b")) {
            host.sourceItems.removeItem(item);
            if (comesBack)
                host.add({item});
        }
        return 0;
    };
    read();
    EXPECT_EQ(rows(), split("(/) c!"));
    host.add({item});
    read(false);
    read();
    EXPECT_EQ(rows(), split("(/) c!"));
    comesBack = true;
    host.add({item});
    read();
    files.before = [](const FileEvent&) { return 0; };
    read();
    EXPECT_EQ(rows().size(), 5U) << "added again meanwhile, it is read again";
}

TEST_F(ReadItemsTest, ManyItemsOfOneFolderCostOneCallEach) {
    for (int i = 0; i < 50; ++i)
        host.add({folder.write("f" + std::to_string(i))});
    FailingFileSystem files;
    read();
    EXPECT_LE(files.callCount(), 54U);
    files.reset();
    read();
    EXPECT_EQ(files.callCount(), 0U) << "nothing new, so nothing to look at";
}

TEST_F(ReadItemsTest, WhatWasSeenWhenAnItemWasAddedIsNotLookedAtAgain) {
    host.sourceItems.keepLooks();
    for (int i = 0; i < 5; ++i)
        host.add({folder.write("f" + std::to_string(i), std::string(i, 'x'))});
    FailingFileSystem files;
    read();
    run<AddFileSortingDataStage>();
    EXPECT_EQ(files.callCount(FileCall::status), 1U) << "at the folder";
    StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::storeWins);
    for (const RowId id : context.fetch({FetchEntity::file, Predicate::always(), {}, 0})) {
        EXPECT_EQ(context.row(id).size, static_cast<std::uint64_t>(context.component(id).back() - '0'));
        FileStatus now;
        ASSERT_EQ(files.status(context.fullPath(id), now), 0);
        EXPECT_EQ(context.row(id).identity(), now.identity);
        EXPECT_EQ(context.row(id).modDate, now.modificationDate);
    }
}

} // namespace
} // namespace tavrin::test
