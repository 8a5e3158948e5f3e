#include "actions/CatalogueFixture.h"
#include "actions/dates/DateFormatter.h"
#include "common/FileTimes.h"
#include "common/TemporaryFolder.h"
#include "platform/metadata/FileManager.h"
#include "support/text/Text.h"

#include <chrono>
#include <cstdlib>

namespace tavrin::test {

namespace {

class DateActions : public CatalogueFixture {
  protected:
    DateActions() {
        ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
        ::tzset();
    }
    ~DateActions() override {
        ::unsetenv("TZ");
        ::tzset();
    }
};

constexpr double june = 740035865; // 2024-06-14 07:31:05 in that zone

TEST_F(DateActions, ShowInTheirMenusWhatTheirPatternsGive) {
    const auto names = CalendarNames::of("en_US");
    const DateFormatter formatter(names);
    const auto dates = formatter.dateChoices();
    const auto times = formatter.timeChoices();
    ASSERT_GE(dates.size(), 19U);
    ASSERT_GE(times.size(), 11U);
    for (const auto& each : dates.subspan(1))
        EXPECT_EQ(text::toUtf8(formatter.formatDate(june, each.value, 0).value()), each.label);
    for (const auto& each : times.subspan(1))
        EXPECT_EQ(text::toUtf8(formatter.formatDate(june, 0, each.value, 0, true).value()), each.label);
    // Every pattern can be chosen: behind the last one there is nothing.
    EXPECT_EQ(formatter.formatDate(june, static_cast<std::int32_t>(dates.size()), 0), u"");
    EXPECT_EQ(formatter.formatDate(june, 0, static_cast<std::int32_t>(times.size())), u"");
}

TEST_F(DateActions, PutTheTimeAloneInLowerCase) {
    const auto names = CalendarNames::of("en_US");
    const DateFormatter formatter(names);
    EXPECT_EQ(formatter.formatDate(june, 12, 8, 3, false), u"14 Jun 2024_07-31-05 am");
    EXPECT_EQ(formatter.formatDate(june, 12, 8, 9, true), u"07-31-05 AM_14 Jun 2024");
    EXPECT_EQ(formatter.formatDate(1e300, 1, 1), std::nullopt);
}

TEST_F(DateActions, TranslateIndexesOfListsWithoutVersionOnly) {
    auto action = catalogue.newActionForName("Add date to end");
    const auto indexes = [&action] {
        return std::pair(action->getParamInt("datePatternIndex", -9),
                         action->getParamInt("timePatternIndex", -9));
    };
    const PropertyDictionary list{{"datePatternIndex", 8}, {"timePatternIndex", 11}};
    action->setParameterList(list);
    EXPECT_EQ(indexes(), std::pair(1, -1));
    // What is translated stays so when it is stored and read again, in a sequence too.
    action->setParameterList(PropertyDictionary(action->parameterList()));
    EXPECT_EQ(indexes(), std::pair(1, -1));

    action->setValue(8, "datePatternIndex");
    EXPECT_EQ(indexes(), std::pair(8, -1));
    auto withVersion = list;
    withVersion.emplace("version", 0);
    action->setParameterList(withVersion);
    EXPECT_EQ(indexes(), std::pair(8, 11));
    // What no table has, or no longer has, is no pattern.
    for (const std::int32_t outside : {-1, 100, 7}) {
        action->setParameterList({{"timePatternIndex", outside}});
        EXPECT_EQ(action->getParamInt("timePatternIndex", 0) == -1, outside != 7) << outside;
    }
    action->setValue(11, "timePatternIndex");
    // Keys of early versions are as old; what a list does not tell is kept.
    action->setParameterList({{"date pattern index", 10}});
    EXPECT_EQ(indexes(), std::pair(2, 11));
}

// No one can set when a file was created; so much is known that it is not when it was last changed.
TEST_F(DateActions, TellTheCreationFromTheLastChange) {
    const TemporaryFolder folder;
    const auto file = folder.write("a");
    setModificationTime(file, "2099-01-01 00:00:00");
    auto action = catalogue.newActionForName("Rename to date");
    action->setParameterList({{"mode", 0}});
    const auto created = FileManager::instance().fileCreationDate(file).value();
    EXPECT_EQ(run(*action, u"a", 1, file), DateFormatter::instance().formatDate(created, 1, 1));
    EXPECT_NE(run(*action, u"a", 1, file), u"2099-01-01 00-00-00");
}

TEST_F(DateActions, GiveAllFilesOfARunTheSameMomentForNow) {
    FileManager files;
    FileManager::setInstance(&files);
    auto action = catalogue.newActionForName("Rename to date");
    action->setParameterList(
        {{"mode", 3}, {"datePatternIndex", 1}, {"timePatternIndex", 15}, {"version", 1}});
    const auto moment = DateFormatter::instance().formatDate(files.now(), 1, 15, 0, true).value();
    EXPECT_EQ(moment.size(), std::u16string_view(u"2024-06-14 07-31-05-000").size());
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(2))
        EXPECT_EQ(run(*action, u"a", 1, "/nowhere/a"), moment);
    FileManager::setInstance(nullptr);
}

} // namespace

} // namespace tavrin::test
