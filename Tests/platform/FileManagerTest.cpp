#include "platform/metadata/FileManager.h"

#include "common/FailingFileSystem.h"
#include "common/TemporaryFolder.h"
#include "support/text/Text.h"
#include "support/values/DecimalNumbers.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace tavrin {
namespace {

using test::TemporaryFolder;

/// Sets the time zone of the process for one test.
class TimeZone {
  public:
    explicit TimeZone(const char* name) {
        if (const char* value = std::getenv("TZ"))
            former = value;
        ::setenv("TZ", name, 1);
        ::tzset();
    }
    ~TimeZone() {
        former ? ::setenv("TZ", former->c_str(), 1) : ::unsetenv("TZ");
        ::tzset();
    }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

  private:
    std::optional<std::string> former;
};

TEST(FileManager, TellsFilesFoldersAndBundlesApart) {
    const TemporaryFolder folder;
    folder.write("file");
    folder.write("file.app");
    folder.write("folder/inside");
    folder.makeFolder("Suffix.APP");
    folder.makeFolder("text.rtfd");
    folder.makeFolder("x.application");
    folder.write("by list/Contents/Info.plist");
    folder.write("contents only/Contents/other");
    folder.write("app folder/AppRun");
    folder.write("app folder/program.desktop");
    folder.write("no launcher/AppRun");
    folder.write("no program/program.desktop");
    folder.link("link to file", "file");
    folder.link("link to folder", "folder");
    folder.link("dangling", "nowhere");
    struct Case {
        const char* name;
        bool isFile, isFolder, isBundle, isLikely;
    };
    const Case cases[] = {
        {"file", true, false, false, false},           {"file.app", true, false, false, true},
        {"folder", false, true, false, false},         {"folder/", false, true, false, false},
        {"Suffix.APP", false, false, true, true},      {"Suffix.APP/", false, false, true, false},
        {"text.rtfd", false, false, true, true},       {"x.application", false, true, false, false},
        {"by list", false, false, true, true},         {"contents only", false, true, false, false},
        {"app folder", false, false, true, false},     {"no launcher", false, true, false, false},
        {"no program", false, true, false, false},     {"link to file", true, false, false, false},
        {"link to folder", false, true, false, false}, {"dangling", true, false, true, false},
        {"missing", true, false, true, false},         {"missing.app", true, false, true, true},
    };
    const FileManager manager;
    for (const Case& c : cases) {
        const std::string path = folder.path(c.name);
        EXPECT_EQ(manager.isFile(path), c.isFile) << c.name;
        EXPECT_EQ(manager.isFolder(path), c.isFolder) << c.name;
        EXPECT_EQ(manager.isBundle(path), c.isBundle) << c.name;
        EXPECT_EQ(manager.folderIsLikelyToBeABundle(path), c.isLikely) << c.name;
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
    folder.write("outside", std::string(5000, 'x'));
    folder.link("a/link", "12345");
    folder.link("to a", "a");
    ASSERT_EQ(::link(folder.path("a/one").c_str(), folder.path("a/deep/one again").c_str()), 0);
    const FileManager manager;
    EXPECT_EQ(manager.sizeForPath(folder.path("a/one"), false), 1000U);
    EXPECT_EQ(manager.sizeForPath(folder.path("a/one"), true), 1000U);
    EXPECT_EQ(manager.sizeForPath(folder.path("a"), false), 0U);
    EXPECT_EQ(manager.sizeForPath(folder.path("a"), true), 2235U); // the link by its own five bytes
    EXPECT_EQ(manager.sizeForPath(folder.path("to a"), true), 2235U);
    EXPECT_EQ(manager.sizeForPath(folder.path("missing"), true), 0U);
    struct stat status {};
    ASSERT_EQ(::stat(folder.path("outside").c_str(), &status), 0);
    EXPECT_EQ(manager.physicalSizeForPath(folder.path("outside"), false),
              std::uint64_t(status.st_blocks) * 512);
    EXPECT_EQ(manager.physicalSizeForPath(folder.path("a"), false), 0U);
    EXPECT_EQ(manager.fileLength(folder.path("outside")), 5000);
    EXPECT_EQ(manager.fileLength(folder.path("missing")), 0);
    ASSERT_EQ(::truncate(folder.write("huge").c_str(), off_t{5} << 30), 0);
    EXPECT_EQ(manager.fileLength(folder.path("huge")), 2147483647);
}

TEST(FileManager, TellsDatesAsTextInLocalTime) {
    const TimeZone zone("XYZ-2");
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

TEST(FileManager, LocksFilesWhereItMay) {
    const TemporaryFolder folder;
    const std::string path = folder.write("file");
    const FileManager manager;
    EXPECT_EQ(manager.lockedFor(path), "Not Locked");
    EXPECT_EQ(manager.lockedFor(folder.path("missing")), "Not Locked");
    EXPECT_FALSE(manager.lockFile(folder.path("missing")));
    if (!manager.lockFile(path))
        GTEST_SKIP() << "only a privileged user may lock";
    EXPECT_EQ(manager.lockedFor(path), "Locked");
    EXPECT_NE(FileSystem::sharedInstance().renameNoReplace(path, folder.path("b")), 0);
    EXPECT_TRUE(manager.unlockFile(path));
    EXPECT_EQ(manager.lockedFor(path), "Not Locked");
}

TEST(FileManager, TakesCodesFromTheirQuotes) {
    EXPECT_EQ(FileManager::extractCodeString("'TEXT'"), "TEXT");
    EXPECT_EQ(FileManager::extractCodeString("'TEX'"), std::nullopt);
    EXPECT_EQ(FileManager::extractCodeString(""), std::nullopt);
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
    EXPECT_EQ(FileManager::convertNumberToString(FileManager::convertStringToNumber(u"03")), u"3");
    EXPECT_EQ(FileManager::convertNumberToString(std::nullopt), u"");
}

TEST(FileManager, InstanceIsTheRegisteredOne) {
    FileManager* const unregistered = &FileManager::instance();
    {
        FileManager own;
        FileManager::setInstance(&own);
        EXPECT_EQ(&FileManager::instance(), &own);
    }
    EXPECT_EQ(&FileManager::instance(), unregistered);
}

} // namespace
} // namespace tavrin
