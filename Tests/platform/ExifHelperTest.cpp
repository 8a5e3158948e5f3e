#include "platform/metadata/ExifHelper.h"

#include "common/TemporaryFolder.h"
#include "common/Variable.h"
#include "platform/metadata/FileManager.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace tavrin {
namespace {

using test::TemporaryFolder;

using namespace std::string_view_literals;

/// 2005-07-01 00:00:00 UTC in seconds since 2001.
constexpr double july2005 = 141868800;

/// The dates of an image in the order in which they count; "" where it has none.
using Dates = std::array<std::string, 3>;

/// A sample of 640 by 480 pixels with other dates; each is a text of 19 characters.
std::string imageWith(const Dates& dates) {
    std::ifstream file(TAVRIN_SOURCE_FOLDER "/Tests/samples/photo.jpg", std::ios::binary);
    std::string image{std::istreambuf_iterator<char>(file), {}};
    constexpr std::array<const char*, 3> present = {"2024:06:14 07:31:05", "2024:07:01 10:00:00",
                                                    "2024:06:15 08:00:00"};
    constexpr std::array<std::string_view, 3> entries = {"\x90\x03\0\x02"sv, "\x01\x32\0\x02"sv,
                                                         "\x90\x04\0\x02"sv};
    for (std::size_t i = 0; i < dates.size(); ++i) {
        if (dates[i].empty())
            image[image.find(entries[i]) + 1] = '\x7F'; // a tag that nobody asks for
        else
            image.replace(image.find(present[i]), dates[i].size(), dates[i]);
    }
    return image;
}

class ExifHelperTest : public testing::Test {
  protected:
    test::LocalTime zone{"UTC"};
    TemporaryFolder folder;
};

TEST_F(ExifHelperTest, TakesTheFirstUsableDate) {
    const std::string first = "2005:07:01 00:00:01";
    const std::string second = "2005:07:01 00:00:02";
    const std::string third = "2005:07:01 00:00:03";
    const std::string empty = "    :  :     :  :  ";
    const std::pair<Dates, double> cases[] = {
        {{first, second, third}, july2005 + 1},
        {{"", second, third}, july2005 + 2},
        {{empty, second, third}, july2005 + 2},
        {{"", "", third}, july2005 + 3},
        {{empty, "0000:00:00 00:00:00", third}, july2005 + 3},
        {{"", "", ""}, 0.0},
        {{"2001:01:01 00:00:00", "", third}, july2005 + 3}, // a result of zero is none
    };
    for (const auto& [dates, expected] : cases) {
        const std::string path = folder.write("a.JPG", imageWith(dates));
        EXPECT_EQ(ExifHelper::exifDateFor(path), expected) << dates[0] << ", " << dates[1];
        EXPECT_EQ(FileManager::instance().fileEXIFDate(path),
                  expected == 0.0 ? FileManager::distantPast : expected);
    }
}

TEST_F(ExifHelperTest, ReadsTheTextInLocalTime) {
    const test::LocalTime summer;
    const std::string path = folder.write("caf\xE9.jpeg", imageWith({"2005:07:01 02:00:00", "", ""}));
    EXPECT_EQ(ExifHelper::exifDateFor(path), july2005);
}

TEST_F(ExifHelperTest, OpensImagesByNameForDatesAndAnyFileForDimensions) {
    const std::string image = imageWith({"2005:07:01 00:00:00", "", ""});
    const FileManager manager;
    const std::string odd = folder.write("image.txt", image);
    EXPECT_EQ(ExifHelper::exifDateFor(odd), 0.0);
    EXPECT_EQ(manager.fileEXIFDimensions(odd), std::pair(640.0F, 480.0F));
    EXPECT_EQ(manager.fileEXIFDimensions(folder.link("link", odd)), std::pair(640.0F, 480.0F));
}

TEST_F(ExifHelperTest, SurvivesWhatIsNoImage) {
    const std::string image = imageWith({"2005:07:01 00:00:00", "", ""});
    folder.write("empty.jpg");
    folder.write("garbage.jpg", "no image at all");
    folder.makeFolder("folder.jpg");
    ASSERT_EQ(::mkfifo(folder.path("pipe.jpg").c_str(), 0600), 0); // opening it would wait for ever
    const FileManager manager;
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

TEST_F(ExifHelperTest, ReadsFromManyThreads) {
    const std::string path = folder.write("a.jpg", imageWith({"2005:07:01 00:00:00", "", ""}));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&path] {
            for (int round = 0; round < 50; ++round)
                EXPECT_EQ(ExifHelper::exifDateFor(path), july2005);
        });
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(ExifHelperTest, ScansDateTexts) {
    const std::pair<const char*, std::optional<double>> cases[] = {
        {"2005:07:01 00:00:09", july2005 + 9},   {"  2005:07:01 00:00:09", july2005 + 9},
        {"2005:07:01 00:00:09.5", july2005 + 9}, {"2005:07:01 00:00:09Z", july2005 + 9},
        {"2004:02:29 23:59:59", 99791999.0},     {"1999:12:31 23:59:59", -31622401.0},
        {"05:07:01 00:00:00", -62972035200.0}, // the year five
        {"0000:00:00 00:00:00", std::nullopt},   {"0000:01:01 00:00:00", std::nullopt},
        {"2023:13:01 00:00:00", std::nullopt},   {"2023:02:30 00:00:00", std::nullopt},
        {"2023:02:03 24:00:00", std::nullopt},   {"2023:02:03 23:60:00", std::nullopt},
        {"2023:02:03 23:00:60", std::nullopt},   {"2023:2:03 23:00:00", std::nullopt},
        {"2023:02:03 3:00:00", std::nullopt},    {"2023:02:03  03:00:00", std::nullopt},
        {"2023:02:03T03:00:00", std::nullopt},   {"2023-02-03 03:00:00", std::nullopt},
        {"12023:02:03 03:00:00", std::nullopt},  {"2023:02:03 03:00", std::nullopt},
        {"    :  :     :  :  ", std::nullopt},   {"", std::nullopt},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ExifHelper::dateFrom(text), expected) << text;
}

TEST_F(ExifHelperTest, KnowsImagesByTheirNames) {
    for (const char* name : {"a.jpg", "/x.y/a.JPEG", "a.b.tiff", "a.HeIc", "a.arw", "a.webp"})
        EXPECT_TRUE(ExifHelper::isImageName(name)) << name;
    for (const char* name : {"a.txt", "jpg", ".jpg", "/x.jpg/a", "/x/.png", "a.jpg.bak", "a.", "", "a.jp"})
        EXPECT_FALSE(ExifHelper::isImageName(name)) << name;
}

} // namespace
} // namespace tavrin
