#include "platform/metadata/FileManager.h"

#include "common/FailingFileSystem.h"
#include "common/TemporaryFolder.h"
#include "common/Variable.h"
#include "support/text/Text.h"
#include "support/values/DecimalNumbers.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin {
namespace {

using test::TemporaryFolder;

TEST(FileManager, TellsFilesFoldersAndBundlesApart) {
    const TemporaryFolder folder;
    for (const char* file :
         {"file", "file.app", "folder/inside", "Suffix.APP/x", "text.rtfd/x", "x.application/x",
          "by list/Contents/Info.plist", "contents only/Contents/other", "app folder/AppRun",
          "app folder/program.desktop", "no launcher/AppRun", "no program/program.desktop"})
        folder.write(file);
    folder.link("link to file", "file");
    folder.link("link to folder", "folder");
    folder.link("dangling", "nowhere");
    // F for a file, D for a folder, B for a bundle, L for what is likely to be one.
    const std::pair<const char*, const char*> cases[] = {
        {"file", "F"},        {"file.app", "FL"},     {"folder", "D"},         {"folder/", "D"},
        {"Suffix.APP", "BL"}, {"Suffix.APP/", "B"},   {"text.rtfd", "BL"},     {"x.application", "D"},
        {"by list", "BL"},    {"contents only", "D"}, {"app folder", "B"},     {"no launcher", "D"},
        {"no program", "D"},  {"link to file", "F"},  {"link to folder", "D"}, {"dangling", "FB"},
        {"missing", "FB"},    {"missing.app", "FBL"},
    };
    const FileManager manager;
    for (const auto& [name, expected] : cases) {
        const std::string path = folder.path(name);
        const std::string found = std::string(manager.isFile(path) ? "F" : "") +
                                  (manager.isFolder(path) ? "D" : "") + (manager.isBundle(path) ? "B" : "") +
                                  (manager.folderIsLikelyToBeABundle(path) ? "L" : "");
        EXPECT_EQ(found, expected) << name;
    }
}

TEST(FileManager, TellsInvisibleNames) {
    const TemporaryFolder folder;
    folder.makeFolder("listed folder");
    folder.write(".hidden", "listed\nlisted folder\ncaf\xE9\n\nlast");
    folder.write("other/.hidden", "plain\n");
    for (const char* name : {".dot", "listed", "plain", "last", "caf\xE9", "other/listed", "other/plain"})
        folder.write(name);
    const std::pair<const char*, bool> cases[] = {
        {".dot", true},        {".hidden", true},       {"listed", true},  {"listed folder/", true},
        {"plain", false},      {"last", true},          {"caf\xE9", true}, {"other", false},
        {"other/plain", true}, {"other/listed", false}, {"plain", false},  {".missing", false},
        {"", false},
    };
    const FileManager manager;
    for (const auto& [name, isInvisible] : cases)
        EXPECT_EQ(manager.isInvisible(folder.path(name)), isInvisible) << name;
    EXPECT_FALSE(manager.isInvisible("/"));
}

TEST(FileManager, ReadsAListOfHiddenNamesOnceForAFolder) {
    const TemporaryFolder folder;
    folder.write(".hidden", "b");
    folder.write("a");
    folder.write("b");
    const FileManager manager;
    test::FailingFileSystem counting;
    for (int i = 0; i < 10; ++i)
        EXPECT_FALSE(manager.isInvisible(folder.path("a")));
    EXPECT_LE(counting.callCount(test::FileCall::read), 2U); // a second one when the list has aged meanwhile
    EXPECT_TRUE(HiddenNames(folder.path()).contains("b"));
    folder.write(".hidden", "a");
    EXPECT_FALSE(HiddenNames(folder.path()).contains("b"));
    EXPECT_TRUE(HiddenNames(folder.path("missing")).empty());
}

TEST(FileManager, SumsSizes) {
    const TemporaryFolder folder;
    folder.write("a/one", std::string(1000, 'x'));
    folder.write("a/.two", std::string(200, 'x'));
    folder.write("a/deep/er/three", std::string(30, 'x'));
    folder.link("a/link", "12345");
    folder.link("to a", "a");
    ASSERT_EQ(::link(folder.path("a/one").c_str(), folder.path("a/deep/one again").c_str()), 0);
    const FileManager manager;
    const std::tuple<const char*, bool, std::uint64_t> cases[] = {
        {"a/one", false, 1000}, {"a/one", true, 1000},
        {"a", false, 0},        {"a", true, 2235}, // the link by its own five bytes
        {"to a", true, 2235},   {"missing", true, 0}};
    for (const auto& [name, recurses, size] : cases)
        EXPECT_EQ(manager.sizeForPath(folder.path(name), recurses), size) << name;
}

TEST(FileManager, TellsDatesAsTextInLocalTime) {
    const test::LocalTime zone("XYZ-2");
    const TemporaryFolder folder;
    const std::string path = folder.write("file");
    const timespec times[2] = {{0, 0}, {978307200 + 4 * 86400 - 1, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    const FileManager manager;
    EXPECT_EQ(manager.modificationDateFor(path), "5 Jan 2001 01:59:59");
    EXPECT_EQ(manager.fileModificationDate(path), 4 * 86400.0 - 1);
    ASSERT_TRUE(manager.fileCreationDate(path));
    EXPECT_NEAR(*manager.fileCreationDate(path), manager.now(), 60);
    EXPECT_FALSE(manager.creationDateFor(path).empty());
    EXPECT_EQ(manager.creationDateFor(folder.path("missing")), "");
    EXPECT_EQ(manager.fileCreationDate(folder.path("missing")), std::nullopt);
    EXPECT_EQ(manager.fileEXIFDate(path), FileManager::distantPast);
}

TEST(FileManager, KeepsCommentsWithTheFile) {
    const TemporaryFolder folder;
    const std::string path = folder.write("file");
    const FileManager manager;
    EXPECT_EQ(manager.finderCommentForFileURL(path), std::nullopt);
    if (!manager.changeFinderComment("caf\xC3\xA9", path))
        GTEST_SKIP() << "the file system of the temporary folder takes no comments";
    EXPECT_EQ(manager.finderCommentForFileURL(path), "caf\xC3\xA9");
    ASSERT_EQ(FileSystem::sharedInstance().renameNoReplace(path, folder.path("renamed")), 0);
    EXPECT_EQ(manager.finderCommentForFileURL(folder.path("renamed")).has_value(),
              FileManager::commentsTravelWithFiles());
    EXPECT_TRUE(manager.changeFinderComment("", folder.path("renamed")));
    EXPECT_EQ(manager.finderCommentForFileURL(folder.path("renamed")), std::nullopt);
    EXPECT_FALSE(manager.changeFinderComment("x", path));
}

TEST(DecimalNumbers, FollowTheLocale) {
    struct Case {
        const char* locale;
        const char16_t* text;
        std::optional<double> number;
        const char16_t* back;
    };
    const Case cases[] = {
        {"C", u"03", 3, u"3"},
        {"C", u"12", 12, u"12"},
        {"C", u"-7", -7, u"-7"},
        {"C", u"A", std::nullopt, u""},
        {"C", u"", std::nullopt, u""},
        {"C", u"3 of 4", std::nullopt, u""},
        {"en_US.UTF-8", u"1234", 1234, u"1,234"},
        {"en_US.UTF-8", u"1.23456", 1.23456, u"1.235"},
        {"de_DE.UTF-8", u"1234,5", 1234.5, u"1.234,5"},
        {"de_DE@euro", u"1.234,5", 1234.5, u"1.234,5"},
    };
    for (const Case& c : cases) {
        const DecimalNumbers numbers(c.locale);
        const auto number = numbers.numberFrom(c.text);
        EXPECT_EQ(number, c.number) << c.locale << " " << text::toUtf8(c.text);
        EXPECT_EQ(number ? numbers.textOf(*number) : std::u16string(), c.back) << c.locale;
    }
}

} // namespace
} // namespace tavrin
