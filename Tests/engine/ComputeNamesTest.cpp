#include "RenameBench.h"
#include "StageTest.h"
#include "engine/naming/ComputeProvisionalNamesStage.h"
#include "engine/naming/ResolveFileNameConflictsStage.h"
#include "engine/reading/AddFileSortingDataStage.h"
#include "engine/reading/ReadItemsIntoDatabaseStage.h"
#include "platform/files/FileSystem.h"
#include "store/rows/FileMO.h"

#include <algorithm>

namespace tavrin::test {
namespace {

class ComputeNamesTest : public StageTest {
  protected:
    /// Each old name with the new one, "a=A", in the order of the old ones.
    std::vector<std::string> shown() {
        std::vector<std::string> names;
        for (const auto& [path, finalName] : host.finalNames())
            names.push_back(relative(path) + "=" + finalName);
        return names;
    }
};

} // namespace

/// Names on disk (with "/" for folders), those on the list, the steps, the new names, how many rows are to be
/// renamed, and settings.
TEST(ComputeNames, OfChains) {
    struct Case {
        const char* name;
        const char* onDisk;
        const char* listed;
        const char* steps;
        const char* finalNames;
        int toRename;
        const char* settings = "";
    };
    const Case cases[] = {
        {"one step", "a.txt B", "a.txt B", "Make uppercase fragmentSelection=0", "B=B a.txt=A.TXT", 1},
        {"each step works on the result of the one before, inactive ones are left out", "a", "a",
         "Add to end string=x; Make uppercase active=0; Add to end string=y; Make lowercase active=2",
         "a=axy", 1},
        {"back to the name", "a", "a", "Make uppercase fragmentSelection=0; Make lowercase", "a=a", 0},
        {"no step is active", "a", "a", "Make uppercase active=0", "a=a", 0},
        {"a colon becomes a slash", "a", "a", "Add to end string=:b", "a=a/b", 1},
        {"a colon on disk is a slash to the actions", "a:b", "a:b",
         "Replace text searchTerm=/ replacementTerm=-", "a:b=a-b", 1},
        {"folders that are not processed take no rank", "b a/ c", "a b c",
         "Produce numbered list prefix= padding=1", "a=a b=1 c=2", 2, "processFolders=0"},
        {"composition alone is no difference", "e\u0301", "e\u0301",
         "Replace text searchTerm=e\u0301 replacementTerm=\u00e9", "e\u0301=\u00e9", 0},
        {"bytes that are no text go through", "\xFFx", "\xFFx", "Make uppercase fragmentSelection=0",
         "\xFFx=\xFFX", 1},
        {"ranks by name across folders", "t/a/2 t/b/1 t/3", "t",
         "Produce numbered list prefix= padding=1 sortingMode=0", "t=t t/3=3 t/a=a t/a/2=2 t/b=b t/b/1=1", 0,
         "processSubfolders=1 processFolders=0"},
        {"each folder counts by itself, also an empty one", "t/a/x t/a/y t/b/z t/e/", "t",
         "Produce numbered list prefix= padding=1 sortingMode=0 sortEachFolderSeparately=1",
         "t=1 t/a=1 t/a/x=1 t/a/y=2 t/b=2 t/b/z=1 t/e=3", 7, "processSubfolders=1"},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        RenameBench bench;
        setAll(bench.host, "processSubfolders=0 previewConflictResolution=0");
        setAll(bench.host, test.settings);
        bench.make(split(test.onDisk));
        for (const std::string& name : split(test.listed))
            bench.host.add({bench.disk.path(name)});
        setSteps(bench.host, test.steps);
        for (int preview = 0; preview < 2; ++preview) { // the second starts from the names on disk too
            bench.host.preview();
            std::vector<std::string> names;
            for (const auto& [path, finalName] : bench.host.finalNames())
                names.push_back(path.substr(bench.disk.path().size() + 1) + "=" + finalName);
            EXPECT_EQ(names, split(test.finalNames));
            EXPECT_EQ(bench.host.counters().numberOfFilesThatNeedRenaming, test.toRename);
        }
    }
}

TEST_F(ComputeNamesTest, HiddenRowsAreNumberedByFolderAllTheSame) {
    folder.write("t/x");
    host.add({folder.path("t")});
    host.set("processSubfolders", 1);
    host.preview();
    host.set("processSubfolders", 0);
    setSteps(host, "Produce numbered list prefix= padding=1 sortEachFolderSeparately=1");
    host.preview();
    EXPECT_EQ(shown(), split("t=1 t/x=1"));
    EXPECT_EQ(host.counters().numberOfFilesThatNeedRenaming, 1);
    EXPECT_EQ(host.counters().totalNumberOfFiles, 1);
    EXPECT_EQ(host.counters().totalNumberOfFilesSelectedOrNot, 2);
}

TEST_F(ComputeNamesTest, AListThatIsLostBeforeTheRunChangesNoName) {
    const std::string list = folder.write("list", "b\n");
    host.add({folder.write("a")});
    setSteps(host, "Rename from list listFilePath=" + list + "; Add to end string=x");
    host.preview();
    EXPECT_EQ(shown(), split("a=bx"));
    folder.remove("list");
    host.preview();
    EXPECT_EQ(shown(), split("a=a"));
    ASSERT_EQ(host.errors().size(), 1U);
    EXPECT_NE(host.errors().front().find(list + ": File does not exist."), std::string::npos);
}

/// Each stage counts as many items as it announces.
TEST_F(ComputeNamesTest, ProgressEndsAtItsTotal) {
    for (const char* name : {"t/a/x", "t/a/y", "t/b/x", "t/z"})
        folder.write(name);
    host.add({folder.path("t")});
    host.set("processSubfolders", 1);
    run<ReadItemsIntoDatabaseStage>();
    const auto expectAll = [&] {
        host.progress.forceUpdate();
        EXPECT_EQ(host.progress.itemText(), "7 out of 7 items");
        host.progress.updateCurrentItemNumber(0);
    };
    run<AddFileSortingDataStage>();
    expectAll();
    for (const char* steps : {"Make uppercase active=0", "Completely rename newName=x"}) {
        setSteps(host, steps);
        run<ComputeProvisionalNamesStage>();
        expectAll();
    }
    run<ResolveFileNameConflictsStage>();
    expectAll();
}

/// Dates, sizes and their absence, from the disk into the rows.
TEST_F(ComputeNamesTest, SortingDataIsReadOncePerRow) {
    folder.write("f", "12345");
    folder.write("d/.hidden/x", "123");
    folder.write("d/y", "1234");
    folder.write("gone");
    host.add({folder.path("f"), folder.path("d"), folder.path("gone")});
    folder.remove("gone");
    host.set("accurateFolderSize", 1);
    host.preview();
    StoreContext context(*host.persistentStoreCoordinator(), StoreContext::MergePolicy::storeWins);
    const auto rowOf = [&](const char* name) {
        context.reset();
        return context.row(context.fileWithPath(folder.path(name)));
    };
    FileStatus status;
    ASSERT_EQ(FileSystem::sharedInstance().status(folder.path("f"), status), 0);
    const NodeRow file = rowOf("f");
    EXPECT_EQ(file.modDate, status.modificationDate);
    EXPECT_EQ(file.crDate, status.creationDate);
    EXPECT_EQ(file.size, 5U);
    EXPECT_EQ(FileMO(context, context.fileWithPath(folder.path("f"))).exifDate(), std::nullopt);
    EXPECT_EQ(rowOf("d").size, 7U);
    EXPECT_EQ(rowOf("gone").modDate, 0.0);
    EXPECT_EQ(rowOf("gone").size, 0U);

    folder.write("f", "1234567");
    host.set("retrieveEXIFInformation", false);
    host.set("accurateFolderSize", 0);
    host.add({folder.makeFolder("e"), folder.write("g.jpg")});
    host.preview();
    EXPECT_EQ(rowOf("f").size, 5U) << "what has its values is not read again";
    EXPECT_EQ(rowOf("e").size, 0U);
    EXPECT_EQ(rowOf("g.jpg").exif, 0.0);
}

/// A list of 2500 rows, so that every pass needs more than one batch, on both kinds of store.
TEST_F(ComputeNamesTest, EveryPassReachesEveryRow) {
    constexpr int files = 2500;
    for (int i = 0; i < files; ++i)
        folder.write("t/d" + std::to_string(i % 7) + "/f" + std::to_string(i));
    for (const bool inFile : {false, true}) {
        EngineTestHost one(inFile ? EngineTestHost::inFile(folder.path(), 0) : ItemStore::Options());
        one.add({folder.path("t")});
        one.set("processSubfolders", 1);
        setSteps(one,
                 "Make uppercase; Add to end string=!; Produce numbered list sortEachFolderSeparately=1");
        one.preview();
        EXPECT_EQ(one.counters().totalNumberOfFiles, files + 8);
        EXPECT_EQ(one.counters().numberOfFilesThatNeedRenaming, files + 8);
        setSteps(one, "Add to end active=0");
        one.preview();
        EXPECT_EQ(one.counters().numberOfFilesThatNeedRenaming, 0);
        one.saveList(1, false, folder.path("list"));
        const std::string list = folder.read("list");
        EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), files + 8);
    }
}

} // namespace tavrin::test
