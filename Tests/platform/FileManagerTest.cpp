#include "platform/metadata/FileManager.h"

#include "common/FailingFileSystem.h"
#include "common/TemporaryFolder.h"
#include "common/Variable.h"
#include "platform/metadata/ExifHelper.h"
#include "support/text/Text.h"
#include "support/values/DecimalNumbers.h"

#include <gtest/gtest.h>

#include <array>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tavrin {
namespace {

using namespace std::string_view_literals;

class FileManagerTest : public testing::Test {
  protected:
    test::LocalTime zone{"UTC"};
    test::TemporaryFolder folder;
    const FileManager manager;
};

TEST_F(FileManagerTest, TellsFilesFoldersAndBundlesApart) {
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
    for (const auto& [name, expected] : cases) {
        const std::string path = folder.path(name);
        const std::string found = std::string(manager.isFile(path) ? "F" : "") +
                                  (manager.isFolder(path) ? "D" : "") + (manager.isBundle(path) ? "B" : "") +
                                  (manager.folderIsLikelyToBeABundle(path) ? "L" : "");
        EXPECT_EQ(found, expected) << name;
    }
}

TEST_F(FileManagerTest, TellsInvisibleNames) {
    folder.makeFolder("listed folder");
    folder.write(".hidden", "listed\nlisted folder\ncaf\xE9\n\nlast");
    folder.write("other/.hidden", "plain\n");
    for (const char* name : {".dot", "listed", "plain", "last", "caf\xE9", "other/listed", "other/plain"})
        folder.write(name);
    for (const char* name : {".dot", ".hidden", "listed", "listed folder/", "last", "caf\xE9", "other/plain"})
        EXPECT_TRUE(manager.isInvisible(folder.path(name))) << name;
    for (const char* name : {"plain", "other", "other/listed", ".missing", ""})
        EXPECT_FALSE(manager.isInvisible(folder.path(name))) << name;
    EXPECT_FALSE(manager.isInvisible("/"));
}

TEST_F(FileManagerTest, ReadsAListOfHiddenNamesOnceForAFolder) {
    folder.write(".hidden", "b");
    folder.write("a");
    test::FailingFileSystem counting;
    for (int i = 0; i < 10; ++i)
        EXPECT_FALSE(manager.isInvisible(folder.path("a")));
    EXPECT_LE(counting.callCount(test::FileCall::read), 2U); // a second one when the list has aged meanwhile
    EXPECT_TRUE(HiddenNames(folder.path()).contains("b"));
    folder.write(".hidden", "a");
    EXPECT_FALSE(HiddenNames(folder.path()).contains("b"));
    EXPECT_TRUE(HiddenNames(folder.path("missing")).empty());
}

TEST_F(FileManagerTest, SumsSizes) {
    folder.write("a/one", std::string(1000, 'x'));
    folder.write("a/.two", std::string(200, 'x'));
    folder.write("a/deep/er/three", std::string(30, 'x'));
    folder.link("a/link", "12345");
    folder.link("to a", "a");
    ASSERT_EQ(::link(folder.path("a/one").c_str(), folder.path("a/deep/one again").c_str()), 0);
    const std::tuple<const char*, bool, std::uint64_t> cases[] = {
        {"a/one", false, 1000}, {"a/one", true, 1000},
        {"a", false, 0},        {"a", true, 2235}, // the link by its own five bytes
        {"to a", true, 2235},   {"missing", true, 0}};
    for (const auto& [name, recurses, size] : cases)
        EXPECT_EQ(manager.sizeForPath(folder.path(name), recurses), size) << name;
}

TEST_F(FileManagerTest, TellsDatesAsTextInLocalTime) {
    const test::LocalTime east("XYZ-2");
    const std::string path = folder.write("file");
    const timespec times[2] = {{0, 0}, {978307200 + 4 * 86400 - 1, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    EXPECT_EQ(manager.modificationDateFor(path), "5 Jan 2001 01:59:59");
    EXPECT_EQ(manager.fileModificationDate(path), 4 * 86400.0 - 1);
    ASSERT_TRUE(manager.fileCreationDate(path));
    EXPECT_NEAR(*manager.fileCreationDate(path), manager.now(), 60);
    EXPECT_FALSE(manager.creationDateFor(path).empty());
    EXPECT_EQ(manager.creationDateFor(folder.path("missing")), "");
    EXPECT_EQ(manager.fileCreationDate(folder.path("missing")), std::nullopt);
}

TEST_F(FileManagerTest, KeepsCommentsWithTheFile) {
    const std::string path = folder.write("file");
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
    const std::tuple<const char*, std::vector<std::u16string>, std::u16string> cases[] = {
        {"C", {u"03", u"12", u"-7", u"A", u"", u"3 of 4"}, u"3|12|-7|none|none|none|"},
        {"en_US.UTF-8", {u"1234", u"1.23456"}, u"1,234|1.235|"},
        {"de_DE.UTF-8", {u"1234,5"}, u"1.234,5|"},
        {"de_DE@euro", {u"1.234,5"}, u"1.234,5|"},
    };
    for (const auto& [locale, texts, expected] : cases) {
        const DecimalNumbers numbers(locale);
        std::u16string found;
        for (const std::u16string& text : texts) {
            const auto number = numbers.numberFrom(text);
            found += (number ? numbers.textOf(*number) : u"none") + u"|";
        }
        EXPECT_EQ(found, expected) << locale;
    }
}

/// 2005-07-01 00:00:00 UTC in seconds since 2001.
constexpr double july2005 = 141868800;

/// The dates of an image in the order in which they count; "" where it has none.
using Dates = std::array<std::string, 3>;

/// A sample of 640 by 480 pixels with other dates; each is a text of 19 characters.
std::string imageWith(const Dates& dates) {
    std::ifstream file(TAVRIN_SOURCE_FOLDER "/Tests/samples/photo.jpg", std::ios::binary);
    std::string image{std::istreambuf_iterator<char>(file), {}};
    constexpr std::array<std::pair<std::string_view, const char*>, 3> present = {{
        {"\x90\x03\0\x02"sv, "2024:06:14 07:31:05"},
        {"\x01\x32\0\x02"sv, "2024:07:01 10:00:00"},
        {"\x90\x04\0\x02"sv, "2024:06:15 08:00:00"},
    }};
    for (std::size_t i = 0; i < dates.size(); ++i)
        if (dates[i].empty())
            image[image.find(present[i].first) + 1] = '\x7F'; // a tag that nobody asks for
        else
            image.replace(image.find(present[i].second), dates[i].size(), dates[i]);
    return image;
}

TEST_F(FileManagerTest, TakesTheFirstUsableDate) {
    const char* const first = "2005:07:01 00:00:01";
    const char* const second = "2005:07:01 00:00:02";
    const char* const third = "2005:07:01 00:00:03";
    const char* const blank = "    :  :     :  :  ";
    const std::pair<Dates, double> cases[] = {
        {{first, second, third}, july2005 + 1},
        {{"", second, third}, july2005 + 2},
        {{blank, second, third}, july2005 + 2},
        {{"", "", third}, july2005 + 3},
        {{blank, "0000:00:00 00:00:00", third}, july2005 + 3},
        {{"2001:01:01 00:00:00", "", third}, july2005 + 3}, // a result of zero is none
        {{"", "", ""}, 0.0},
    };
    for (const auto& [dates, expected] : cases) {
        const std::string path = folder.write("a.JPG", imageWith(dates));
        EXPECT_EQ(ExifHelper::exifDateFor(path), expected) << dates[0] << ", " << dates[1];
        EXPECT_EQ(manager.fileEXIFDate(path), expected == 0.0 ? FileManager::distantPast : expected);
    }
    const test::LocalTime summer;
    const std::string local = folder.write("caf\xE9.jpeg", imageWith({"2005:07:01 02:00:00", "", ""}));
    EXPECT_EQ(ExifHelper::exifDateFor(local), july2005);
}

TEST_F(FileManagerTest, ReadsImagesAndSurvivesWhatIsNone) {
    const std::string image = imageWith({"2005:07:01 00:00:00", "", ""});
    const std::string odd = folder.write("image.txt", image);
    EXPECT_EQ(ExifHelper::exifDateFor(odd), 0.0) << "no name of an image";
    EXPECT_EQ(manager.fileEXIFDimensions(folder.link("link", odd)), std::pair(640.0F, 480.0F));
    folder.write("empty.jpg");
    folder.write("garbage.jpg", "no image at all");
    folder.makeFolder("folder.jpg");
    ASSERT_EQ(::mkfifo(folder.path("pipe.jpg").c_str(), 0600), 0); // opening it would wait for ever
    for (const char* name : {"empty.jpg", "garbage.jpg", "folder.jpg", "pipe.jpg", "missing.jpg"}) {
        EXPECT_EQ(ExifHelper::exifDateFor(folder.path(name)), 0.0) << name;
        EXPECT_EQ(manager.fileEXIFDimensions(folder.path(name)), std::pair(-1.0F, -1.0F)) << name;
    }
    for (std::size_t length = 0; length < 1000; ++length) {
        const double date = ExifHelper::exifDateFor(folder.write("cut.jpg", image.substr(0, length)));
        EXPECT_TRUE(date == 0.0 || date == july2005) << length;
    }
    EXPECT_EQ(ExifHelper::exifDateFor("relative.jpg"), 0.0);
}

TEST_F(FileManagerTest, ReadsFromManyThreads) {
    const std::string path = folder.write("a.jpg", imageWith({"2005:07:01 00:00:00", "", ""}));
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&path] {
            for (int round = 0; round < 50; ++round)
                EXPECT_EQ(ExifHelper::exifDateFor(path), july2005);
        });
}

TEST_F(FileManagerTest, ScansDateTexts) {
    const std::pair<const char*, double> cases[] = {
        {"2005:07:01 00:00:09", july2005 + 9},   {"  2005:07:01 00:00:09", july2005 + 9},
        {"2005:07:01 00:00:09.5", july2005 + 9}, {"2005:07:01 00:00:09Z", july2005 + 9},
        {"2004:02:29 23:59:59", 99791999.0},     {"1999:12:31 23:59:59", -31622401.0},
        {"05:07:01 00:00:00", -62972035200.0}, // the year five
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ExifHelper::dateFrom(text), expected) << text;
    for (const char* text :
         {"0000:00:00 00:00:00", "0000:01:01 00:00:00", "2023:13:01 00:00:00", "2023:02:30 00:00:00",
          "2023:02:03 24:00:00", "2023:02:03 23:60:00", "2023:02:03 23:00:60", "2023:2:03 23:00:00",
          "2023:02:03 3:00:00", "2023:02:03  03:00:00", "2023:02:03T03:00:00", "2023-02-03 03:00:00",
          "12023:02:03 03:00:00", "2023:02:03 03:00", "    :  :     :  :  ", ""})
        EXPECT_EQ(ExifHelper::dateFrom(text), std::nullopt) << text;
}

TEST_F(FileManagerTest, KnowsImagesByTheirNames) {
    for (const char* name : {"a.jpg", "/x.y/a.JPEG", "a.b.tiff", "a.HeIc", "a.arw", "a.webp"})
        EXPECT_TRUE(ExifHelper::isImageName(name)) << name;
    for (const char* name : {"a.txt", "jpg", ".jpg", "/x.jpg/a", "/x/.png", "a.jpg.bak", "a.", "", "a.jp"})
        EXPECT_FALSE(ExifHelper::isImageName(name)) << name;
}

} // namespace
} // namespace tavrin
