#include "tags/TagAccessors.h"

#include "platform/files/FileStatus.h"
#include "support/text/Text.h"
#include "tags/CapitalizedWords.h"
#include "tags/FakeTaggedFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <limits>
#include <stdexcept>

namespace tavrin::test {

namespace {

std::string shown(const TagText& text) { return text ? text::toUtf8(*text) : "nothing"; }

TEST(TagAccessors, GiveTheValueOfTheirKeyInTheirForm) {
    const struct {
        const char* accessor;
        const char* key;
        const char16_t* value;
        const char* expected;
    } cases[] = {
        {"imageWidth", "ImageWidth", u"640", "640"},
        {"gpsLatitudeRef", "GPSLatitudeRef", u"North ", "North "},
        {"cameraMake", "Make", u"Halden", "Halden"},
        {"autoFocus", "AutoFocus", u"On", "On"},
        {"songName", "Title", u"Blue/nHour", "Blue/nHour"},
        {"songName", "Song", u"Blue Hour", "nothing"},
        {"numTracks", "numTrack", u"12", "12"},
        {"trackNumZeroPadded", "track", u"3", "03"},
        {"trackNumZeroPadded", "track", u"12", "12"},
        {"trackNumZeroPadded", "track", u"", ""},
        {"numTracksZeroPadded", "numTrack", u"100", "100"},
        {"cdNumZeroPadded", "cd", u"A", "0A"},
        {"numCdsZeroPadded", "numCds", u"2", "02"},
        {"numCdsZeroPadded", "cd", u"2", "nothing"},
        {"exifDateSubSecond", "SubSecTimeOriginal", u"05", "5"},
        {"exifDate0SubSecond", "SubSecTimeOriginal", u"05", "005"},
        {"exifDate0SubSecond", "SubSecTimeOriginal", u"1234", "1234"},
        {"exifDate0SubSecond", "SubSecTimeOriginal", u"x", "000"},
        {"exifDateSubSecond", "SubSecTime", u"05", "nothing"},
        {"durationInSeconds", "Duration#", u"61.93", "61"},
        {"durationInSeconds", "Duration#", u"61", "61"},
        {"durationInSeconds", "Duration#", u".5.7", ""},
        {"durationInSeconds", "Duration", u"61", "nothing"},
        {"duration_MM_SS", "Duration#", u"61.93", "01_01"},
        {"duration_MM_SS", "Duration#", u"3725", "62_05"},
        {"duration_MM_SS", "Duration#", u"360000", "6000_00"},
        {"duration_HH_MM_SS", "Duration#", u"61.93", "00_01_01"},
        {"duration_HH_MM_SS", "Duration#", u"3725", "01_02_05"},
        {"duration_HH_MM_SS", "Duration#", u"99999999999", "596523_14_07"},
        {"duration_HH_MM_SS", "Duration#", u"no time", "00_00_00"},
    };
    for (const auto& each : cases) {
        FakeTaggedFile file({{each.key, each.value}});
        EXPECT_EQ(shown(tagAccessor(each.accessor)(file)), each.expected)
            << each.accessor << " of " << text::toUtf8(each.value);
    }
    for (const char* name : {"", "imageWidthZeroPadded2", "modDate", "exifDateNoon", "ZeroPadded"})
        EXPECT_THROW((void)tagAccessor(name), std::logic_error) << name;
}

/// Two hours ahead of UTC all the year round.
class ZonedTest : public testing::Test {
  protected:
    ZonedTest() {
        if (const char* zone = std::getenv("TZ"))
            former = zone;
        ::setenv("TZ", "XYZ-2", 1);
        ::tzset();
    }
    ~ZonedTest() override {
        former ? ::setenv("TZ", former->c_str(), 1) : ::unsetenv("TZ");
        ::tzset();
    }

  private:
    std::optional<std::string> former;
};
using TagDates = ZonedTest;

double secondsOf(const char* local) {
    std::tm fields{};
    EXPECT_NE(::strptime(local, "%Y-%m-%d %H:%M:%S", &fields), nullptr);
    return static_cast<double>(std::mktime(&fields) - referenceDateSince1970);
}

TEST_F(TagDates, AreWrittenInLocalTime) {
    const struct {
        const char* date;
        const char* suffix;
        const char* expected;
    } cases[] = {
        {"2005-03-07 00:30:05", "DayOfTheMonth", "7"},
        {"2005-03-07 00:30:05", "0DayOfTheMonth", "07"},
        {"2005-03-07 00:30:05", "Month", "3"},
        {"2005-03-07 00:30:05", "0Month", "03"},
        {"2005-03-07 00:30:05", "2DigitYear", "05"},
        {"2005-03-07 00:30:05", "4DigitYear", "2005"},
        {"0987-03-07 00:30:05", "4DigitYear", "0987"},
        {"2000-03-07 00:30:05", "2DigitYear", "00"},
        {"2005-03-07 00:30:05", "Hour24", "0"},
        {"2005-03-07 00:30:05", "0Hour24", "00"},
        {"2005-03-07 00:30:05", "Hour12", "12"},
        {"2005-03-07 09:30:05", "0Hour12", "09"},
        {"2005-03-07 12:59:05", "Hour12", "12"},
        {"2005-03-07 13:30:05", "Hour12", "1"},
        {"2005-03-07 13:30:05", "0Hour12", "01"},
        {"2005-03-07 13:30:05", "0Hour24", "13"},
        {"2005-03-07 13:07:05", "Minute", "7"},
        {"2005-03-07 13:07:05", "0Minute", "07"},
        {"2005-03-07 13:07:05", "Second", "5"},
        {"2005-03-07 13:07:05", "0Second", "05"},
        {"2005-03-07 00:30:05", "_am_pm", "am"},
        {"2005-03-07 12:59:05", "_am_pm", "pm"},
        {"2005-03-07 11:59:05", "_AM_PM", "AM"},
        {"2005-03-07 23:59:05", "_AM_PM", "PM"},
        {"2005-03-07 00:30:05", "_am_pm_noon_midnight", "midnight"},
        {"2005-03-07 01:00:00", "_am_pm_noon_midnight", "am"},
        {"2005-03-07 12:59:05", "_am_pm_noon_midnight", "noon"},
        {"2005-03-07 13:00:00", "_am_pm_noon_midnight", "pm"},
        {"2005-03-07 00:30:05", "_AM_PM_NOON_MIDNIGHT", "MIDNIGHT"},
        {"2005-03-07 11:59:59", "_AM_PM_NOON_MIDNIGHT", "AM"},
        {"2005-03-07 12:00:00", "_AM_PM_NOON_MIDNIGHT", "NOON"},
        {"2005-03-07 23:00:00", "_AM_PM_NOON_MIDNIGHT", "PM"},
    };
    using enum TaggedFile::Date;
    for (const auto& [prefix, date] : {std::pair{"exifDate", shooting}, std::pair{"crDate", creation},
                                       std::pair{"modDate", modification}}) {
        for (const auto& each : cases) {
            FakeTaggedFile file;
            file.dates[date] = secondsOf(each.date);
            const std::string accessor = std::string(prefix) + each.suffix;
            EXPECT_EQ(shown(tagAccessor(accessor)(file)), each.expected) << accessor << " of " << each.date;
            FakeTaggedFile dateless;
            EXPECT_EQ(tagAccessor(accessor)(dateless), std::nullopt) << accessor;
            EXPECT_EQ(file.dictionaryReads, 0) << "a date must not start the metadata tool";
        }
    }
}

TEST_F(TagDates, TakeAnyNumberOfSeconds) {
    const TagAccessor second = tagAccessor("modDateSecond"), hour = tagAccessor("modDateHour24");
    FakeTaggedFile file;
    auto& date = file.dates[TaggedFile::Date::modification];
    date = 0.0;
    EXPECT_EQ(shown(hour(file)), "2"); // the zero of all dates is midnight UTC
    date = -0.5;
    EXPECT_EQ(shown(second(file)), "59");
    for (const double strange : {std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, 1e19}) {
        date = strange;
        EXPECT_EQ(second(file), std::nullopt) << strange;
    }
}

TEST(CapitalizedWords, BeginWithACapital) {
    const std::pair<const char16_t*, const char*> cases[] = {
        {u"", ""},
        {u"the BLUE hour (live)", "The Blue Hour (Live)"},
        {u"don't stop", "Don't Stop"},
        {u"rock 'n' roll", "Rock 'N' Roll"},
        {u"it\u2019s 2nd-hand", "It\u2019s 2nd-Hand"},
        {u"\u00e9t\u00c9 e\u0301TE\u0301", "\u00c9t\u00e9 E\u0301te\u0301"},
        {u"\u03a3\u039f\u03a3", "\u03a3\u03bf\u03c2"},
        {u"stra\u00dfe \u00dfa", "Stra\u00dfe SSa"},
        {u"\xD801\xDC28\xD801\xDC00", "\U00010400\U00010428"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(text::toUtf8(capitalized(text)), expected);
}

} // namespace

} // namespace tavrin::test
