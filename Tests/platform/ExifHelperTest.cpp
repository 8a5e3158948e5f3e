#include "common/TemporaryFolder.h"
#include "platform/metadata/FileManager.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace tavrin {
namespace {

using test::TemporaryFolder;

/// 2005-07-01 00:00:00 UTC in seconds since 2001.
constexpr double july2005 = 141868800;

struct ImageDates {
    std::string original;
    std::string tiff;
    std::string digitized;
};

std::string littleEndian(std::uint32_t number, std::size_t size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i)
        bytes += static_cast<char>(number >> (8 * i));
    return bytes;
}

/// One directory of a TIFF file: entries, then the texts that they point to.
class Directory {
  public:
    void addNumber(unsigned tag, std::uint32_t value) { add(tag, 4, 1, value); }
    void addText(unsigned tag, const std::string& text) {
        if (text.empty())
            return;
        texts.emplace_back(entries.size(), text);
        add(tag, 2, static_cast<std::uint32_t>(text.size() + 1), 0);
    }
    [[nodiscard]] std::uint32_t size() const {
        std::size_t bytes = 2 + entries.size() * 12 + 4;
        for (const auto& [place, text] : texts)
            bytes += text.size() + 1;
        return static_cast<std::uint32_t>(bytes);
    }
    std::string bytesAt(std::uint32_t offset) {
        std::string tail;
        const auto tailStart = static_cast<std::uint32_t>(offset + 2 + entries.size() * 12 + 4);
        for (const auto& [place, text] : texts) {
            entries[place].replace(8, 4,
                                   littleEndian(tailStart + static_cast<std::uint32_t>(tail.size()), 4));
            tail.append(text).push_back('\0');
        }
        std::string bytes = littleEndian(static_cast<std::uint32_t>(entries.size()), 2);
        for (const std::string& entry : entries)
            bytes += entry;
        return bytes + littleEndian(0, 4) + tail;
    }

  private:
    void add(unsigned tag, unsigned type, std::uint32_t count, std::uint32_t value) {
        entries.push_back(littleEndian(tag, 2) + littleEndian(type, 2) + littleEndian(count, 4) +
                          littleEndian(value, 4));
    }
    std::vector<std::string> entries;
    std::vector<std::pair<std::size_t, std::string>> texts;
};

std::string tiffOf(const ImageDates& dates) {
    constexpr std::uint32_t headerSize = 8;
    const auto mainDirectory = [&dates](std::uint32_t exifOffset) {
        Directory directory;
        directory.addNumber(0x0100, 12); // width
        directory.addNumber(0x0101, 7);  // height
        directory.addText(0x0132, dates.tiff);
        directory.addNumber(0x8769, exifOffset);
        return directory;
    };
    Directory exif;
    exif.addText(0x9003, dates.original);
    exif.addText(0x9004, dates.digitized);
    exif.addNumber(0xA002, 12);
    const std::uint32_t exifOffset = headerSize + mainDirectory(0).size();
    return "II*" + std::string(1, '\0') + littleEndian(headerSize, 4) +
           mainDirectory(exifOffset).bytesAt(headerSize) + exif.bytesAt(exifOffset);
}

std::string bigEndian16(std::size_t number) {
    return {static_cast<char>(number >> 8), static_cast<char>(number & 0xFF)};
}

/// Enough of a JPEG to be known as one: the EXIF segment, a frame header of 12 by 7 pixels, the end.
std::string jpegOf(const ImageDates& dates) {
    const std::string exif = std::string("Exif\0\0", 6) + tiffOf(dates);
    const std::string frame = std::string("\x08\x00\x07\x00\x0C\x01\x01\x11\x00", 9);
    return "\xFF\xD8\xFF\xE1" + bigEndian16(exif.size() + 2) + exif + "\xFF\xC0" +
           bigEndian16(frame.size() + 2) + frame + "\xFF\xD9";
}

class ExifHelperTest : public testing::Test {
  protected:
    void SetUp() override {
        ::setenv("TZ", "UTC", 1);
        ::tzset();
    }
    void TearDown() override {
        ::unsetenv("TZ");
        ::tzset();
    }
    TemporaryFolder folder;
};

TEST_F(ExifHelperTest, TakesTheFirstUsableDate) {
    const std::string first = "2005:07:01 00:00:01";
    const std::string second = "2005:07:01 00:00:02";
    const std::string third = "2005:07:01 00:00:03";
    const std::string empty = "    :  :     :  :  ";
    const std::pair<ImageDates, double> cases[] = {
        {{first, second, third}, july2005 + 1},
        {{"", second, third}, july2005 + 2},
        {{empty, second, third}, july2005 + 2},
        {{"", "", third}, july2005 + 3},
        {{empty, "0000:00:00 00:00:00", third}, july2005 + 3},
        {{"", "", ""}, 0.0},
        {{"2001:01:01 00:00:00", "", third}, july2005 + 3}, // a result of zero is none
    };
    for (const auto& [dates, expected] : cases)
        for (const auto& [name, content] :
             {std::pair("a.JPG", jpegOf(dates)), std::pair("a.tif", tiffOf(dates))}) {
            const std::string path = folder.write(name, content);
            EXPECT_EQ(ExifHelper::exifDateFor(path), expected) << name << " " << dates.original;
            EXPECT_EQ(FileManager::instance().fileEXIFDate(path),
                      expected == 0.0 ? FileManager::distantPast : expected);
        }
}

TEST_F(ExifHelperTest, ReadsTheTextInLocalTime) {
    ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    ::tzset();
    const std::string path = folder.write("caf\xE9.jpeg", jpegOf({"2005:07:01 02:00:00", "", ""}));
    EXPECT_EQ(ExifHelper::exifDateFor(path), july2005);
}

TEST_F(ExifHelperTest, OpensImagesByNameForDatesAndAnyFileForDimensions) {
    const std::string image = jpegOf({"2005:07:01 00:00:00", "", ""});
    const FileManager manager;
    const std::string odd = folder.write("image.txt", image);
    EXPECT_EQ(ExifHelper::exifDateFor(odd), 0.0);
    EXPECT_EQ(manager.fileEXIFDimensions(odd), std::pair(12.0F, 7.0F));
    EXPECT_EQ(manager.fileEXIFDimensions(folder.link("link", odd)), std::pair(12.0F, 7.0F));
}

TEST_F(ExifHelperTest, SurvivesWhatIsNoImage) {
    const std::string image = jpegOf({"2005:07:01 00:00:00", "", ""});
    folder.write("empty.jpg");
    folder.write("garbage.jpg", "no image at all");
    folder.makeFolder("folder.jpg");
    ASSERT_EQ(::mkfifo(folder.path("pipe.jpg").c_str(), 0600), 0); // opening it would wait for ever
    const FileManager manager;
    for (const char* name : {"empty.jpg", "garbage.jpg", "folder.jpg", "pipe.jpg", "missing.jpg"}) {
        EXPECT_EQ(ExifHelper::exifDateFor(folder.path(name)), 0.0) << name;
        EXPECT_EQ(manager.fileEXIFDimensions(folder.path(name)), std::pair(-1.0F, -1.0F)) << name;
    }
    for (std::size_t length = 0; length < image.size(); ++length) {
        const double date = ExifHelper::exifDateFor(folder.write("cut.jpg", image.substr(0, length)));
        EXPECT_TRUE(date == 0.0 || date == july2005) << length;
    }
    EXPECT_EQ(ExifHelper::exifDateFor("relative.jpg"), 0.0);
}

TEST_F(ExifHelperTest, ReadsFromManyThreads) {
    const std::string path = folder.write("a.jpg", jpegOf({"2005:07:01 00:00:00", "", ""}));
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
