#include "platform/files/FileStatus.h"
#include "support/text/Text.h"
#include "tags/FakeTaggedFile.h"
#include "tags/TagForms.h"
#include "tags/TagLibraryHelper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <limits>

namespace tavrin::test {

namespace {

std::string textOf(const std::string& tag, TaggedFile& file) {
    static const TagLibraryHelper library;
    const auto item = library.tagItemsByName().find(text::fromUtf8("<" + tag + ">"));
    if (item == library.tagItemsByName().end())
        return "no such tag";
    const TagText text = item->second.extractStringFromFile(file);
    return text ? text::toUtf8(*text) : "nothing";
}

TEST(Tags, GiveTheValueOfTheirKeyInTheirForm) {
    const struct {
        const char* tag;
        const char* key;
        const char16_t* value;
        const char* expected;
    } cases[] = {
        {"GPSLatitudeRef", "GPSLatitudeRef", u"North ", "North "},
        {"Song", "Title", u"Blue/nHour", "Blue/nHour"},
        {"Song", "Song", u"Blue Hour", "nothing"},
        {"ARTIST", "Artist", u"Ann \u00df", "ANN SS"},
        {"album", "Album", u"BEST Of", "best of"},
        {"Song_sentence_case", "Title", u"bLUE hOUR", "Blue hour"},
        {"Song_Capitalized", "Title", u"bLUE hOUR", "Blue Hour"},
        {"0TrackNum", "track", u"3", "03"},
        {"0TrackNum", "track", u"12", "12"},
        {"0TrackNum", "track", u"", ""},
        {"0NumTracks", "numTrack", u"100", "100"},
        {"0CDNum", "cd", u"A", "0A"},
        {"0numCds", "cd", u"2", "nothing"},
        {"ShootingDateSubSecond", "SubSecTimeOriginal", u"05", "5"},
        {"ShootingDate0SubSecond", "SubSecTimeOriginal", u"05", "005"},
        {"ShootingDate0SubSecond", "SubSecTimeOriginal", u"1234", "1234"},
        {"ShootingDate0SubSecond", "SubSecTimeOriginal", u"x", "000"},
        {"ShootingDateSubSecond", "SubSecTime", u"05", "nothing"},
        {"DurationInSeconds", "Duration#", u"61.93", "61"},
        {"DurationInSeconds", "Duration#", u".5.7", ""},
        {"DurationInSeconds", "Duration", u"61", "nothing"},
        {"Duration_MM_SS", "Duration#", u"61.93", "01_01"},
        {"Duration_MM_SS", "Duration#", u"3725", "62_05"},
        {"Duration_MM_SS", "Duration#", u"360000", "6000_00"},
        {"Duration_HH_MM_SS", "Duration#", u"3725", "01_02_05"},
        {"Duration_HH_MM_SS", "Duration#", u"99999999999", "596523_14_07"},
        {"Duration_HH_MM_SS", "Duration#", u"no time", "00_00_00"},
    };
    for (const auto& each : cases) {
        FakeTaggedFile file({{each.key, each.value}});
        EXPECT_EQ(textOf(each.tag, file), each.expected) << each.tag << " of " << text::toUtf8(each.value);
    }
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
    constexpr const char* moments[] = {"2005-03-07 00:30:05", "0987-11-12 09:07:06", "2000-03-17 12:59:15",
                                       "2019-12-31 23:59:59"};
    const struct {
        const char* tag;
        std::array<const char*, std::size(moments)> expected;
    } cases[] = {
        {"Day", {"7", "12", "17", "31"}},
        {"0Day", {"07", "12", "17", "31"}},
        {"Month", {"3", "11", "3", "12"}},
        {"0Month", {"03", "11", "03", "12"}},
        {"2DigitYear", {"05", "87", "00", "19"}},
        {"4DigitYear", {"2005", "0987", "2000", "2019"}},
        {"Hour24", {"0", "9", "12", "23"}},
        {"0Hour24", {"00", "09", "12", "23"}},
        {"Hour12", {"12", "9", "12", "11"}},
        {"0Hour12", {"12", "09", "12", "11"}},
        {"Minute", {"30", "7", "59", "59"}},
        {"0Minute", {"30", "07", "59", "59"}},
        {"Second", {"5", "6", "15", "59"}},
        {"0Second", {"05", "06", "15", "59"}},
        {"_am_pm", {"am", "am", "pm", "pm"}},
        {"_AM_PM", {"AM", "AM", "PM", "PM"}},
        {"_am_pm_noon_midnight", {"midnight", "am", "noon", "pm"}},
        {"_AM_PM_NOON_MIDNIGHT", {"MIDNIGHT", "AM", "NOON", "PM"}},
    };
    using enum TaggedFile::Date;
    for (const auto& [prefix, date] :
         {std::pair{"ShootingDate", shooting}, {"CreationDate", creation}, {"ModDate", modification}}) {
        for (const auto& each : cases) {
            const std::string tag = std::string(prefix) + each.tag;
            FakeTaggedFile file;
            EXPECT_EQ(textOf(tag, file), "nothing") << tag;
            for (std::size_t i = 0; i < std::size(moments); ++i) {
                file.dates[date] = secondsOf(moments[i]);
                EXPECT_EQ(textOf(tag, file), each.expected[i]) << tag << " of " << moments[i];
            }
            EXPECT_EQ(file.dictionaryReads, 0) << "a date must not start the metadata tool";
        }
    }
}

TEST_F(TagDates, TakeAnyNumberOfSeconds) {
    FakeTaggedFile file;
    auto& date = file.dates[TaggedFile::Date::modification];
    date = 0.0;
    EXPECT_EQ(textOf("ModDateHour24", file), "2"); // the zero of all dates is midnight UTC
    date = -0.5;
    EXPECT_EQ(textOf("ModDateSecond", file), "59");
    for (const double strange : {std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, 1e19}) {
        date = strange;
        EXPECT_EQ(textOf("ModDateSecond", file), "nothing") << strange;
    }
}

TEST(TagForms, CapitalizeWords) {
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
