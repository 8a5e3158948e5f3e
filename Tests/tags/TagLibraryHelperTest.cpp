#include "tags/TagLibraryHelper.h"

#include "platform/propertylists/UserDefaults.h"
#include "support/text/Text.h"
#include "tags/FakeTaggedFile.h"
#include "tags/MixedTokenFieldLogic.h"
#include "tags/TagArrayController.h"
#include "tags/TagNotice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <set>

namespace tavrin::test {

namespace {

using testing::ElementsAre;
using Texts = std::vector<std::u16string>;

class CountingNotice final : public TagNotice {
  public:
    void tellThatTagIsNotPresent() override { ++told; }
    int told = 0;
};

TEST(TagLibrary, HoldsEachTagInItsCategories) {
    const TagLibraryHelper library;
    std::set<std::string> categories;
    std::set<std::pair<std::string, std::u16string>> places;
    for (std::size_t row = 0; row < library.availableTags().size(); ++row) {
        const TagItem& item = library.availableTags()[row];
        EXPECT_EQ(item.name, library.validTags().at(row));
        EXPECT_TRUE(library.isValidTag(item.name));
        EXPECT_EQ(TagLibraryHelper::decomposeStringIntoTokenArray(item.name), Texts{item.name});
        EXPECT_FALSE(item.description.empty());
        EXPECT_TRUE(places.emplace(item.category, item.name).second) << text::toUtf8(item.name);
        categories.emplace(item.category);
    }
    EXPECT_THAT(categories, ElementsAre("camera", "exif_date", "file_date", "image", "music"));
}

TEST(TagLibrary, ResolvesPatterns) {
    FakeTaggedFile file({{"ImageWidth", u"640"},
                         {"ImageHeight", u"480"},
                         {"Artist", u"aNN bEE"},
                         {"Year", u"<ImageWidth>"},
                         {"track", u"3"}});
    file.dates[TaggedFile::Date::modification] = 0;
    const std::tuple<const char16_t*, const char*, int> cases[] = {
        // pattern, text, how often the user is told
        {u"", "", 0},
        {u"<ImageWidth>x<ImageHeight>", "640x480", 0},
        {u"a<NoSuchTag>b", "ab", 0},
        {u"a<Year", "a", 0},
        {u"<<Year>", "", 0},
        {u"<a<Year>>b", ">b", 0},
        {u"a>b", "a>b", 0},
        {u"<year>", "", 0},
        {u"<Year>", "<ImageWidth>", 0}, // a value is no pattern
        {u"<Artist>|<artist>|<ARTIST>", "aNN bEE|ann bee|ANN BEE", 0},
        {u"<Artist_sentence_case>|<Artist_Capitalized>", "Ann bee|Ann Bee", 0},
        {u"<TrackNum><0TrackNum>", "303", 0},
        {u"<ImageWidth>x<BitDepth>", "nothing", 1},
        {u"<album>", "nothing", 1},
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
    CountingNotice notice;
    TagLibraryHelper library(&notice);
    EXPECT_EQ(library.resolvePattern(u"text <NoSuchTag>", file), u"text ");
    EXPECT_EQ(library.resolvePattern(u"<ModDateDay><CreationDateDay><ShootingDateDay>", file), std::nullopt);
    EXPECT_EQ(file.dictionaryReads, 0);
    EXPECT_EQ(notice.told, 1);
    file.reason = "unreadable"; // so nobody knows what it lacks
    CountingNotice silent;
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

TEST(TagArrayController, ShowsTheSelectedTab) {
    const TagLibraryHelper library;
    UserDefaults defaults;
    TagArrayController controller(library, defaults);
    int changes = 0;
    controller.setOnChange([&] { ++changes; });
    const auto durations = [&] {
        return std::ranges::count_if(
            controller.content(), [](const TagItem* item) { return item->name.starts_with(u"<Duration"); });
    };
    struct Tab {
        int index;
        std::size_t rows;
        int durations;
    };
    for (const Tab tab : {Tab{1, 19, 3}, Tab{2, 14, 0}, Tab{3, 20, 0}, Tab{4, 36, 0}, Tab{5, 27, 3},
                          Tab{0, 116, 6}, Tab{6, 0, 0}, Tab{-1, 0, 0}}) {
        changes = 0;
        defaults.setObject("tagLibraryTabIndex", tab.index);
        EXPECT_EQ(controller.content().size(), tab.rows) << tab.index;
        EXPECT_EQ(durations(), tab.durations) << tab.index;
        EXPECT_EQ(changes, 1) << tab.index;
    }
    EXPECT_EQ(controller.getAvailableTags().size(), 116U);
    EXPECT_EQ(controller.draggedText(std::array<std::size_t, 1>{0}), std::nullopt);
    defaults.setObject("tagLibraryTabIndex", 2);
    EXPECT_EQ(controller.draggedText(std::array<std::size_t, 2>{4, 1}), "<ShutterSpeed>");
    EXPECT_EQ(controller.draggedText({}), std::nullopt);
}

} // namespace

} // namespace tavrin::test
