#include "actions/CatalogueFixture.h"
#include "actions/dates/DateFormatter.h"
#include "platform/metadata/FileManager.h"

namespace tavrin::test {

namespace {

class DateActions : public CatalogueFixture {
    LocalTime zone;
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

TEST_F(DateActions, JoinDateAndTime) {
    const auto names = CalendarNames::of("en_US");
    const DateFormatter formatter(names);
    std::string joined;
    for (std::int32_t mode = -1; mode <= 12; ++mode)
        joined += text::toUtf8(formatter.formatDate(june, 12, 1, mode).value_or(u"none")) + "|";
    EXPECT_EQ(joined, "none|14 Jun 2024 07-31-05|14 Jun 202407-31-05|14 Jun 2024-07-31-05|"
                      "14 Jun 2024_07-31-05|14 Jun 2024/07-31-05|14 Jun 2024.07-31-05|"
                      "07-31-05 14 Jun 2024|07-31-0514 Jun 2024|07-31-05-14 Jun 2024|"
                      "07-31-05_14 Jun 2024|07-31-05/14 Jun 2024|07-31-05.14 Jun 2024|none|");
    EXPECT_EQ(formatter.formatDate(june, 12, 8, 3, false), u"14 Jun 2024_07-31-05 am");
    EXPECT_EQ(formatter.formatDate(june, 12, 8, 9, true), u"07-31-05 AM_14 Jun 2024");
    EXPECT_EQ(formatter.formatDate(1e300, 1, 1), std::nullopt);
}

TEST_F(DateActions, TranslateIndexesOfListsWithoutVersionOnly) {
    const auto action = make("Add date to end");
    const struct {
        PropertyDictionary list;
        std::int32_t date, time;
    } lists[] = {
        {{{"datePatternIndex", 8}, {"timePatternIndex", 11}}, 1, -1},
        {{{"datePatternIndex", 1}, {"timePatternIndex", -1}, {"version", 0}}, 1, -1},
        {{{"datePatternIndex", 8}, {"timePatternIndex", 11}, {"version", 0}}, 8, 11},
        // What no table has, or no longer has, is no pattern.
        {{{"timePatternIndex", -1}}, 8, -1},
        {{{"timePatternIndex", 100}}, 8, -1},
        {{{"timePatternIndex", 7}}, 8, 9},
        // Keys of early versions are as old; what a list does not tell is kept.
        {{{"date pattern index", 10}}, 2, 9},
    };
    for (const auto& [list, date, time] : lists) {
        action->setParameterList(list);
        // What is translated stays so when it is stored and read again, in a sequence too.
        action->setParameterList(storedAndRead(action->parameterList()));
        EXPECT_EQ(action->getParamInt("datePatternIndex", -9), date);
        EXPECT_EQ(action->getParamInt("timePatternIndex", -9), time);
    }
    action->setValue(8, "datePatternIndex");
    EXPECT_EQ(action->getParamInt("datePatternIndex", -9), 8);
}

// No one can set when a file was created; so much is known that it is not when it was last changed.
TEST_F(DateActions, TellTheCreationFromTheLastChange) {
    const TemporaryFolder folder;
    const auto file = folder.write("a");
    setModificationTime(file, "2099-01-01 00:00:00");
    const auto action = make("Rename to date", {{"mode", 0}});
    const auto created = FileManager::instance().fileCreationDate(file).value();
    EXPECT_EQ(run(*action, u"a", 1, file), DateFormatter::instance().formatDate(created, 1, 1));
    EXPECT_NE(run(*action, u"a", 1, file), u"2099-01-01 00-00-00");
}

TEST_F(DateActions, GiveAllFilesOfARunTheSameMomentForNow) {
    FileManager files;
    FileManager::setInstance(&files);
    const auto action = make("Rename to date", {{"mode", 3}, {"timePatternIndex", 15}, {"version", 1}});
    const auto moment = DateFormatter::instance().formatDate(files.now(), 1, 15, 0, true).value();
    EXPECT_EQ(moment.size(), std::u16string_view(u"2024-06-14 07-31-05-000").size());
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(2))
        EXPECT_EQ(run(*action, u"a", 1, "/nowhere/a"), moment);
    FileManager::setInstance(nullptr);
}

} // namespace

} // namespace tavrin::test
