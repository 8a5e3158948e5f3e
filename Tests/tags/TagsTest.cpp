#include "common/Testing.h"
#include "platform/files/FileStatus.h"
#include "platform/propertylists/UserDefaults.h"
#include "tags/MixedTokenFieldLogic.h"
#include "tags/StringToInvisiblesValueTransformer.h"
#include "tags/TagArrayController.h"
#include "tags/TagForms.h"
#include "tags/TagLibraryHelper.h"
#include "tags/TagNotice.h"
#include "tags/TaggedFile.h"

namespace tavrin::test {

namespace {

using Texts = std::vector<std::u16string>;

/// A file whose dates and metadata the test tells; counts how often the metadata is asked for.
class FakeTaggedFile final : public TaggedFile {
  public:
    explicit FakeTaggedFile(PropertyDictionary dictionary = {}) : tags(std::move(dictionary)) {}

    [[nodiscard]] std::optional<double> date(Date which) override {
        const auto date = dates.find(which);
        return date == dates.end() ? std::nullopt : std::optional(date->second);
    }
    [[nodiscard]] const PropertyDictionary& tagDictionary() override {
        ++dictionaryReads;
        return tags;
    }
    [[nodiscard]] std::string failure() const override { return reason; }

    std::string reason;
    std::map<Date, double> dates;
    PropertyDictionary tags;
    int dictionaryReads = 0;
};

class CountingNotice final : public TagNotice {
  public:
    void tellThatTagIsNotPresent() override { ++told; }
    int told = 0;
};

std::string resolved(std::u16string_view pattern, TaggedFile& file) {
    static TagLibraryHelper library;
    const TagText text = library.resolvePattern(pattern, file);
    return text ? text::toUtf8(*text) : "nothing";
}

TEST(TagLibrary, ShowsEachTagInTheTabsOfItsCategories) {
    const TagLibraryHelper library;
    UserDefaults defaults;
    TagArrayController controller(library, defaults);
    int changes = 0;
    controller.setOnChange([&] { ++changes; });
    std::set<std::pair<std::string, std::u16string>> places;
    const char* const tabs[] = {"image", "camera", "exif_date", "file_date", "music"};
    for (int tab = 1; tab <= 5; ++tab) {
        defaults.setObject("tagLibraryTabIndex", tab);
        EXPECT_FALSE(controller.content().empty());
        for (const TagItem* item : controller.content()) {
            EXPECT_EQ(item->category, tabs[tab - 1]);
            EXPECT_TRUE(library.isValidTag(item->name));
            EXPECT_EQ(TagLibraryHelper::decomposeStringIntoTokenArray(item->name), Texts{item->name});
            EXPECT_FALSE(item->description.empty());
            EXPECT_TRUE(places.emplace(item->category, item->name).second) << text::toUtf8(item->name);
        }
    }
    EXPECT_TRUE(places.contains({"image", u"<Duration_MM_SS>"}) &&
                places.contains({"music", u"<Duration_MM_SS>"}));
    for (const auto& [tab, rows] : {std::pair(0, places.size()), {6, 0}, {-1, 0}}) {
        defaults.setObject("tagLibraryTabIndex", tab);
        EXPECT_EQ(controller.content().size(), rows) << tab;
    }
    EXPECT_EQ(changes, 8);
    EXPECT_EQ(controller.getAvailableTags().size(), places.size());
    EXPECT_EQ(controller.draggedText(std::array<std::size_t, 1>{0}), std::nullopt);
    defaults.setObject("tagLibraryTabIndex", 2);
    EXPECT_EQ(controller.draggedText(std::array<std::size_t, 2>{4, 1}), "<ShutterSpeed>");
    EXPECT_EQ(controller.draggedText({}), std::nullopt);
}

TEST(TagLibrary, ResolvesPatterns) {
    FakeTaggedFile file({{"ImageWidth", u"640"}, {"ImageHeight", u"480"}, {"Year", u"<ImageWidth>"}});
    file.dates[TaggedFile::Date::modification] = 0;
    const std::tuple<const char16_t*, const char*, int> cases[] = {
        // pattern, text, how often the user is told
        {u"", "", 0},
        {u"<ImageWidth>x<ImageHeight>", "640x480", 0},
        {u"a<NoSuchTag>b", "ab", 0},
        {u"a<Year", "a", 0},
        {u"<<Year>", "", 0},
        {u"a>b", "a>b", 0},
        {u"<year>", "", 0},
        {u"<Year>", "<ImageWidth>", 0}, // a value is no pattern
        {u"<ImageWidth>x<BitDepth>", "nothing", 1},
        {u"<BitDepth", "", 0},
        {u"<\u0301Year>", "<\u0301Year>", 0}, // no bracket, but a letter with its mark
        {u"<Year>\u0301<ImageWidth>", "", 0},
        {u"\u00e9e\u0301\r\n<ImageWidth>", "\u00e9e\u0301\r\n640", 0},
    };
    for (const auto& [pattern, expected, told] : cases) {
        CountingNotice notice;
        TagLibraryHelper library(&notice);
        for (int use = 0; use < 2; ++use) {
            const TagText text = library.resolvePattern(pattern, file);
            EXPECT_EQ(text ? text::toUtf8(*text) : "nothing", expected) << text::toUtf8(pattern);
        }
        EXPECT_EQ(notice.told, told) << text::toUtf8(pattern);
    }
}

TEST(TagLibrary, AsksAFileForNoMoreThanThePatternNeeds) {
    FakeTaggedFile file;
    CountingNotice notice, silent;
    TagLibraryHelper library(&notice);
    EXPECT_EQ(library.resolvePattern(u"text <NoSuchTag>", file), u"text ");
    EXPECT_EQ(library.resolvePattern(u"<ModDateDay><CreationDateDay><ShootingDateDay>", file), std::nullopt);
    EXPECT_EQ(file.dictionaryReads, 0);
    EXPECT_EQ(notice.told, 1);
    file.reason = "unreadable"; // so nobody knows what it lacks
    EXPECT_EQ(TagLibraryHelper(&silent).resolvePattern(u"<Artist><Album><Song>", file), std::nullopt);
    EXPECT_EQ(file.dictionaryReads, 1);
    EXPECT_EQ(silent.told, 0);
}

TEST(TagLibrary, CutsPatternsIntoTokens) {
    const std::pair<std::u16string, Texts> cases[] = {
        {u"", {}},
        {u"<ImageWidth>x<Year>", {u"<ImageWidth>", u"x", u"<Year>"}},
        {u"a<NoSuchTag>b", {u"a", u"<NoSuchTag>", u"b"}},
        {u"a<Year", {u"a"}},
        {u"<<Year>", {u"<<Year>"}},
        {u"a>b", {u"", u"a>b"}},
        {u"a>b<Year>c>", {u"", u"a>b", u"<Year>", u"", u"c>"}},
        {u"<>", {u"<>"}},
        {u"<\u0301a>", {u"", u"<\u0301a>"}},
    };
    for (const auto& [pattern, tokens] : cases) {
        EXPECT_EQ(TagLibraryHelper::decomposeStringIntoTokenArray(pattern), tokens) << text::toUtf8(pattern);
        const auto transformed = StringToTokenArrayTransformer::transformedValue(pattern);
        EXPECT_EQ(transformed.has_value(), !pattern.empty());
        if (pattern != u"a<Year") {
            EXPECT_EQ(StringToTokenArrayTransformer::reverseTransformedValue(transformed), pattern);
        }
    }
    EXPECT_EQ(StringToTokenArrayTransformer::transformedValue(std::nullopt), std::nullopt);
}

TEST(TagLibrary, IsTheRegisteredOneWhileThatLives) {
    TagLibraryHelper* const unregistered = &TagLibraryHelper::sharedInstance();
    {
        TagLibraryHelper library;
        TagLibraryHelper::setSharedInstance(&library);
        EXPECT_EQ(&TagLibraryHelper::sharedInstance(), &library);
    }
    EXPECT_EQ(&TagLibraryHelper::sharedInstance(), unregistered);
}

TEST(Tags, GiveTheValueOfTheirKeyInTheirForm) {
    const std::tuple<const char*, const char16_t*, const char16_t*, const char*> cases[] = {
        // key, its value, pattern, text
        {"GPSLatitudeRef", u"North ", u"<GPSLatitudeRef>", "North "},
        {"Song", u"Blue Hour", u"<Song>", "nothing"},
        {"Title", u"bL hO\u00df", u"<song>|<SONG>|<Song_sentence_case>|<Song_Capitalized>",
         "bl ho\u00df|BL HOSS|Bl ho\u00df|Bl Ho\u00df"},
        {"track", u"3", u"<TrackNum>|<0TrackNum>", "3|03"},
        {"track", u"", u"<TrackNum>|<0TrackNum>", "|"},
        {"cd", u"A", u"<CDNum>|<0CDNum>", "A|0A"},
        {"cd", u"2", u"<0numCds>", "nothing"},
        {"SubSecTimeOriginal", u"05", u"<ShootingDateSubSecond>|<ShootingDate0SubSecond>", "5|005"},
        {"SubSecTimeOriginal", u"1234", u"<ShootingDateSubSecond>|<ShootingDate0SubSecond>", "1234|1234"},
        {"SubSecTimeOriginal", u"x", u"<ShootingDateSubSecond>|<ShootingDate0SubSecond>", "0|000"},
        {"SubSecTime", u"05", u"<ShootingDateSubSecond>", "nothing"},
        {"Duration", u"61", u"<DurationInSeconds>", "nothing"},
        {"Duration#", u"61.93", u"<DurationInSeconds>|<Duration_MM_SS>", "61|01_01"},
        {"Duration#", u".5.7", u"<DurationInSeconds>", ""},
        {"Duration#", u"3725", u"<Duration_MM_SS>|<Duration_HH_MM_SS>", "62_05|01_02_05"},
        {"Duration#", u"99999999999", u"<Duration_HH_MM_SS>", "596523_14_07"},
        {"Duration#", u"no time", u"<Duration_HH_MM_SS>", "00_00_00"},
    };
    for (const auto& [key, value, pattern, expected] : cases) {
        FakeTaggedFile file({{key, value}});
        EXPECT_EQ(resolved(pattern, file), expected)
            << text::toUtf8(pattern) << " of " << text::toUtf8(value);
    }
}

TEST(Tags, AreWrittenInLocalTime) {
    const LocalTime twoHoursAhead("XYZ-2");
    const std::pair<const char*, const char*> moments[] = {
        {"2005-03-07 00:30:05", "7 07 3 03 05 2005 0 00 12 12 30 30 5 05 am AM midnight MIDNIGHT "},
        {"0987-11-12 09:07:06", "12 12 11 11 87 0987 9 09 9 09 7 07 6 06 am AM am AM "},
        {"2000-03-17 12:59:15", "17 17 3 03 00 2000 12 12 12 12 59 59 15 15 pm PM noon NOON "},
        {"2019-12-31 23:59:59", "31 31 12 12 19 2019 23 23 11 11 59 59 59 59 pm PM pm PM "}};
    using enum TaggedFile::Date;
    for (const auto& [prefix, date] :
         {std::pair{u"<ShootingDate", shooting}, {u"<CreationDate", creation}, {u"<ModDate", modification}}) {
        std::u16string pattern;
        for (const auto* tag :
             {u"Day", u"0Day", u"Month", u"0Month", u"2DigitYear", u"4DigitYear", u"Hour24", u"0Hour24",
              u"Hour12", u"0Hour12", u"Minute", u"0Minute", u"Second", u"0Second", u"_am_pm", u"_AM_PM",
              u"_am_pm_noon_midnight", u"_AM_PM_NOON_MIDNIGHT"})
            pattern.append(prefix).append(tag).append(u"> ");
        FakeTaggedFile file;
        EXPECT_EQ(resolved(pattern, file), "nothing");
        for (const auto& [moment, expected] : moments) {
            std::tm fields{};
            EXPECT_NE(::strptime(moment, "%Y-%m-%d %H:%M:%S", &fields), nullptr);
            file.dates[date] = static_cast<double>(std::mktime(&fields) - referenceDateSince1970);
            EXPECT_EQ(resolved(pattern, file), expected) << text::toUtf8(prefix);
        }
        EXPECT_EQ(file.dictionaryReads, 0) << "a date must not start the metadata tool";
    }
}

TEST(Tags, TakeAnyNumberOfSeconds) {
    const LocalTime twoHoursAhead("XYZ-2");
    constexpr auto none = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [date, expected] : {std::pair(0.0, "2.0"), // the zero of all dates is midnight UTC
                                         {-0.5, "1.59"},
                                         {none, "nothing"},
                                         {1e300, "nothing"},
                                         {-1e300, "nothing"},
                                         {1e19, "nothing"}}) {
        FakeTaggedFile file;
        file.dates[TaggedFile::Date::modification] = date;
        EXPECT_EQ(resolved(u"<ModDateHour24>.<ModDateSecond>", file), expected) << date;
    }
}

TEST(TagForms, CapitalizeWords) {
    const std::pair<const char16_t*, const char*> cases[] = {
        {u"", ""},
        {u"don't stop", "Don't Stop"},
        {u"it\u2019s 2nd-hand", "It\u2019s 2nd-Hand"},
        {u"\u00e9t\u00c9 e\u0301TE\u0301", "\u00c9t\u00e9 E\u0301te\u0301"},
        {u"\u03a3\u039f\u03a3", "\u03a3\u03bf\u03c2"},
        {u"stra\u00dfe \u00dfa", "Stra\u00dfe SSa"},
        {u"\xD801\xDC28\xD801\xDC00", "\U00010400\U00010428"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(text::toUtf8(capitalized(text)), expected);
}

// ---- tokens and signs while the user types

std::string shown(const std::optional<Texts>& tokens) {
    if (!tokens)
        return "unchanged";
    std::string text;
    for (const auto& token : *tokens)
        text += "[" + text::toUtf8(token) + "]";
    return text;
}

TEST(MixedTokenField, RecognisesTagsWhileTheUserTypes) {
    const TagLibraryHelper library;
    const MixedTokenFieldLogic field(library);
    const struct {
        Texts value;
        std::size_t location;
        const char* expected;
    } cases[] = {
        {{}, 0, "unchanged"},
        {{u"abc<Year>"}, 9, "[abc][<Year>]"},
        {{u"abc<Year"}, 8, "[abc<Year]"},
        {{u"a>b>c"}, 5, "[abc]"},
        {{u"<x>b<y>c"}, 8, "[<x>b<y>c]"},
        {{u">"}, 1, "unchanged"},
        {{u"a<b<Year>c"}, 9, "[a<b][<Year>][c]"},
        // Text that waited for a tag is one object: it vanishes in front of the tag, and what is typed behind
        // shows in its place too.
        {{u"<x><Year>"}, 9, "[][<Year>]"},
        {{u"<x><Year>z"}, 10, "[z][<Year>][z]"},
        {{u"<x><Year><y><ISO>z"}, 18, "[z][<Year>][z][<ISO>][z]"},
        // Which entry is meant: a token takes one position, and an edge belongs to the entry in front.
        {{u"ab", u"<Year>", u"c<ISO>"}, 9, "[ab][<Year>][c][<ISO>]"},
        {{u"ab>", u"<Year>", u"c>"}, 3, "[ab][<Year>][c>]"},
        {{u"ab>", u"<Year>", u"c>"}, 4, "[ab>][<Year>][c>]"},
        {{u"ab>", u"<Year>", u"c>"}, 5, "[ab>][<Year>][c]"},
        {{u"ab>", u"<NoSuchTag>", u"c>"}, 15, "[ab>][<NoSuchTag>][c]"},
        {{u"<Year>\u0301"}, 7, "[<Year>\u0301]"},
        {{u"\U0001F600<ISO>"}, 7, "[\U0001F600][<ISO>]"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(shown(field.controlTextDidChange(each.value, each.location)), each.expected)
            << shown(each.value) << " at " << each.location;
    EXPECT_TRUE(field.isToken(u"<numCds>"));
    EXPECT_FALSE(field.isToken(u"<NumCds>"));
}

TEST(StringToInvisibles, ShowsBlanksAndControlCharactersWhileItIsOn) {
    UserDefaults defaults;
    const StringToInvisiblesValueTransformer transformer(defaults);
    for (const auto& [text, shown] : {std::pair(u"a b\tc", "a·b→c"),
                                      {u"\r\n", "\u240D\u2424"},
                                      {u"a\u0001\u007f\u0085b\u202e", "a\u2023\u2023\u2023b\u2023"},
                                      {u"\u00a0\U0001F600e\u0301", "\u00a0\U0001F600e\u0301"},
                                      {u"\U000E0001", "\u2023"},
                                      {u"", ""}}) {
        defaults.setObject("showInvisibles", false);
        EXPECT_EQ(transformer.transformedValue(text), text);
        defaults.setObject("showInvisibles", true);
        EXPECT_EQ(text::toUtf8(*transformer.transformedValue(text)), shown);
    }
    EXPECT_EQ(transformer.transformedValue(std::nullopt), std::nullopt);
}

} // namespace

} // namespace tavrin::test
