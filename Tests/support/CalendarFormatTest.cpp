#include "support/values/CalendarFormat.h"

#include "common/Variable.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tavrin::test {

namespace {

/// A zone told by rules, so that no table of zones is needed, and messages in a language of their own.
class CalendarFormats : public ::testing::Test {
  protected:
    LocalTime zone;
    Variable language{"LC_ALL", "fi_FI.UTF-8"};

    static std::string formatted(std::u16string_view pattern, double seconds, const std::string& locale) {
        const auto names = CalendarNames::of(locale);
        std::u16string result;
        CalendarFormat(pattern, names).append(LocalMoment::at(seconds).value(), result);
        return text::toUtf8(result);
    }
};

constexpr double june = 1718343065;      // Friday 2024-06-14 07:31:05 in summer time
constexpr double midnight = 1704063600;  // Monday 2024-01-01 00:00:00
constexpr double longAgo = -62135600400; // Monday 0001-01-01 00:00:00 in the calendar of the system

TEST_F(CalendarFormats, GiveTheFieldsOfADate) {
    const struct {
        std::u16string_view pattern;
        double seconds;
        const char* locale;
        const char* expected;
    } cases[] = {
        {u"%Y-%m-%d %H:%M:%S.%F %j %y %w", june + 0.25, "C", "2024-06-14 07:31:05.250 166 24 5"},
        {u"%A, %e %B %Y; %a %b", june, "C.UTF-8", "Friday, 14 June 2024; Fri Jun"},
        {u"%e|%d|%1m|%1H|%3M|%9Y|%0S|%1j", midnight, "C", "1|01|1|0|000|000002024|0|1"},
        {u"%I%p %1I", midnight, "C", "12AM 12"},
        {u"%I%p %1I", midnight + 12 * 3600, "C", "12PM 12"},
        {u"%I %1I %p", midnight + 13 * 3600, "C", "01 1 PM"},
        {u"%Z %z", june, "C", "CEST +0200"},
        {u"%Z %z", midnight, "C", "CET +0100"},
        {u"%Y %y", longAgo, "C", "0001 01"},
        {u"%F", midnight + 0.999999, "C", "999"},
        {u"%S%F", -0.001, "C", "59999"},
        {u"%F", 1718343065.123, "C", "123"},
        // What is no field stays, digits too; two signs are one.
        {u"100%% %Q %3Q %x é% ", june, "C", "100% %Q %3Q %x é% "},
        {u"%%Y%", june, "C", "%Y%"},
        {u"%5", june, "C", "%5"},
        {u"%5A", june, "C", "Friday"},
        {u"", june, "C", ""},
        // Words in the user's language, abbreviations without stops, digits and calendar always the same.
        {u"%a %A %e %b %B", midnight, "de_DE.UTF-8", "Mo Montag 1 Jan Januar"},
        {u"%b", midnight + 60 * 86400, "de_DE@euro", "März"},
        {u"%B %p", june, "es_ES", "junio am"},
        {u"%e %B", june, "ru_RU.UTF-8", "14 июня"},
        {u"%Y %e %B", june, "fa_IR", "2024 14 ژوئن"},
        {u"%Y %b", june, "th_TH", "2024 มิย"},
        {u"%Y %B", june, "xx_nowhere", "2024 June"},
        {u"%B", june, "", "June"},
        {u"%B", june, "nn_NO", "juni"},
        {u"%B", june, "no_NO", "juni"},
        {u"%B", june, "iw_IL", "יוני"},
        {u"%B", june, "tl_PH", "Hunyo"},
        {u"%B", june, "ca_ES@valencia", "de juny"},
        {u"%B", june, "zh_CN.GB18030", "六月"},
        {u"%B", june, "pt_BR", "junho"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(formatted(each.pattern, each.seconds, each.locale), each.expected)
            << text::toUtf8(each.pattern) << " in " << each.locale;
}

TEST_F(CalendarFormats, KnowNoMomentBeyondAllCalendars) {
    for (const double seconds : {1e17, -1e300, std::strtod("nan", nullptr)})
        EXPECT_FALSE(LocalMoment::at(seconds)) << seconds;
}

} // namespace

} // namespace tavrin::test
