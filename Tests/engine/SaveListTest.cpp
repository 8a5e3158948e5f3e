#include "RenameBench.h"
#include "StageTest.h"
#include "common/FailingFileSystem.h"

#include <cerrno>

namespace tavrin::test {
namespace {

class SaveListTest : public StageTest {
  protected:
    std::string save(int format, bool onlyAffected) {
        host.saveList(format, onlyAffected, folder.path("list.txt"));
        return folder.read("list.txt");
    }
};

TEST_F(SaveListTest, WritesTheFormats) {
    EXPECT_EQ(save(0, false), "") << "without items";
    host.add({folder.write("b/B"), folder.write("b/a")});
    setSteps(host, "Make uppercase");
    host.preview();
    struct Case {
        int format;
        bool onlyAffected;
        std::string text;
    };
    const Case cases[] = {
        {0, false, "B\tB\na\tA\n"},
        {1, false, "B\nA\n"},
        {2, false, folder.path("b/B") + "\tB\n" + folder.path("b/a") + "\tA\n"},
        {0, true, "a\tA\n"},
        {1, true, "A\n"},
        {2, true, folder.path("b/a") + "\tA\n"},
        {3, false, ""},
        {-1, false, ""},
    };
    for (const Case& test : cases)
        EXPECT_EQ(save(test.format, test.onlyAffected), test.text) << test.format << test.onlyAffected;
    EXPECT_EQ(folder.tree().count("b/a"), 1U) << "nothing is renamed";
}

TEST_F(SaveListTest, SettlesConflictsFirstAndFollowsTheFilter) {
    host.add({folder.write("1"), folder.write("2"), folder.makeFolder("3")});
    setAll(host, "previewConflictResolution=0 processFolders=0");
    setSteps(host, "Completely rename newName=x");
    host.preview();
    EXPECT_EQ(save(0, false), "1\txa\n2\txb\n");
}

TEST_F(SaveListTest, NamesArePrecomposedAndBytesAndLinksStay) {
    host.add({folder.write("e\u0301"), folder.write("\xFFz"), folder.write("tab\tin\nname")});
    host.preview();
    folder.write("real.txt", "old");
    (void)folder.link("list.txt", "real.txt");
    EXPECT_EQ(save(1, true), "");
    EXPECT_EQ(save(1, false), "\u00e9\ntab\tin\nname\n\xFFz\n");
    EXPECT_EQ(folder.read("real.txt"), folder.read("list.txt"));
    EXPECT_EQ(folder.kind("list.txt"), FileStatus::Kind::link);
}

TEST_F(SaveListTest, AFailureIsToldAndTheOldFileStays) {
    const std::string list = folder.write("list.txt", "old");
    host.add({folder.write("a")});
    host.preview();
    {
        FailingFileSystem files;
        files.failKind(FileCall::write, ENOSPC);
        EXPECT_EQ(save(0, false), "old");
        EXPECT_EQ(host.events.back(), "showFileListNotSaved " + list + ": No space left on device");
    }
    BrokenHost broken(folder.path());
    broken.host.saveList(0, false, list);
    EXPECT_TRUE(broken.host.events.back().starts_with("showFileListNotSaved " + list + ": segment "));
    EXPECT_EQ(folder.read("list.txt"), "old");
}

} // namespace
} // namespace tavrin::test
