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
    host.add({folder.write("b/B"), folder.write("b/a")});
    host.setSteps({{"Make uppercase", {}}});
    host.preview();
    struct Case {
        int format;
        bool onlyAffected;
        std::string text;
    };
    const std::vector<Case> cases{
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
    host.set("previewConflictResolution", false);
    host.set("processFolders", 0);
    host.setSteps({{"Completely rename", {{"newName", u"x"}}}});
    host.preview();
    EXPECT_EQ(save(0, false), "1\txa\n2\txb\n");
}

TEST_F(SaveListTest, NamesArePrecomposedAndBytesStay) {
    host.add({folder.write("e\u0301"), folder.write("\xFFz"), folder.write("tab\tin\nname")});
    host.preview();
    EXPECT_EQ(save(1, false), "\u00e9\ntab\tin\nname\n\xFFz\n");
    EXPECT_EQ(save(1, true), "");
}

TEST_F(SaveListTest, AFailureIsToldAndTheOldFileStays) {
    host.add({folder.write("a")});
    host.preview();
    folder.write("list.txt", "old");
    FailingFileSystem files;
    files.failKind(FileCall::write, ENOSPC);
    host.events.clear();
    host.saveList(0, false, folder.path("list.txt"));
    EXPECT_EQ(folder.read("list.txt"), "old");
    EXPECT_EQ(host.events.back(),
              "showFileListNotSaved " + folder.path("list.txt") + ": No space left on device");
    files.reset();
    EXPECT_EQ(save(0, false), "a\ta\n");
    EXPECT_EQ(host.events.back(), "showFileListSavingCompletionDialog 0");
}

TEST_F(SaveListTest, WhatCannotBeReadIsNotSaidToBeSaved) {
    BrokenHost broken(folder.path());
    const std::string list = folder.path("list.txt");
    broken.host.saveList(0, false, list);
    EXPECT_TRUE(broken.host.events.back().starts_with("showFileListNotSaved " + list + ": segment "));
    EXPECT_EQ(folder.kind("list.txt"), std::nullopt);
}

TEST_F(SaveListTest, ALinkStaysOne) {
    host.add({folder.write("a")});
    host.preview();
    folder.write("real.txt", "old");
    (void)folder.link("list.txt", "real.txt");
    EXPECT_EQ(save(1, false), "a\n");
    EXPECT_EQ(folder.read("real.txt"), "a\n");
}

TEST_F(SaveListTest, WithoutItemsTheListIsEmpty) { EXPECT_EQ(save(0, false), ""); }

} // namespace
} // namespace tavrin::test
