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

    /// Each case is a locale, a pattern and behind " = " what it gives.
    static void expectAt(double seconds, const std::vector<std::string>& cases) {
        for (const std::string& each : cases) {
            const std::size_t space = each.find(' ');
            const std::size_t equals = each.find(" = ", space);
            const auto names = CalendarNames::of(each.substr(0, space));
            const std::u16string pattern = text::fromUtf8(each.substr(space + 1, equals - space - 1));
            std::u16string result;
            CalendarFormat(pattern, names).append(LocalMoment::at(seconds).value(), result);
            EXPECT_EQ(text::toUtf8(result), each.substr(equals + 3)) << each;
        }
    }
};

constexpr double june = 1718343065;      // Friday 2024-06-14 07:31:05 in summer time
constexpr double midnight = 1704063600;  // Monday 2024-01-01 00:00:00
constexpr double longAgo = -62135600400; // Monday 0001-01-01 00:00:00 in the calendar of the system

TEST_F(CalendarFormats, GiveTheFieldsOfADate) {
    expectAt(june + 0.25, {"C %Y-%m-%d %H:%M:%S.%F %j %y %w = 2024-06-14 07:31:05.250 166 24 5"});
    expectAt(midnight, {"C %e|%d|%1m|%1H|%3M|%9Y|%0S|%1j = 1|01|1|0|000|000002024|0|1",
                        "C %I%p %1I = 12AM 12", "C %Z %z = CET +0100"});
    expectAt(midnight + 12 * 3600, {"C %I%p %1I = 12PM 12"});
    expectAt(midnight + 13 * 3600, {"C %I %1I %p = 01 1 PM"});
    expectAt(longAgo, {"C %Y %y = 0001 01"});
    expectAt(midnight + 0.999999, {"C %F = 999"});
    expectAt(-0.001, {"C %S%F = 59999"});
    expectAt(1718343065.123, {"C %F = 123"});
    // What is no field stays, digits too; two signs are one.
    expectAt(june, {"C 100%% %Q %3Q %x é%  = 100% %Q %3Q %x é% ", "C %%Y% = %Y%", "C %5 = %5",
                    "C %5A = Friday", "C  = ", "C %Z %z = CEST +0200"});
}

TEST_F(CalendarFormats, SpeakTheLanguageOfTheLocale) {
    // Abbreviations without stops, digits and calendar always the same.
    expectAt(midnight, {"de_DE.UTF-8 %a %A %e %b %B = Mo Montag 1 Jan Januar"});
    expectAt(midnight + 60 * 86400, {"de_DE@euro %b = März"});
    expectAt(june, {"C.UTF-8 %A, %e %B %Y; %a %b = Friday, 14 June 2024; Fri Jun", "es_ES %B %p = junio am",
                    "ru_RU.UTF-8 %e %B = 14 июня", "fa_IR %Y %e %B = 2024 14 ژوئن", "th_TH %Y %b = 2024 มิย",
                    "xx_nowhere %Y %B = 2024 June", " %B = June", "nn_NO %B = juni", "no_NO %B = juni",
                    "iw_IL %B = יוני", "tl_PH %B = Hunyo", "ca_ES@valencia %B = de juny",
                    "zh_CN.GB18030 %B = 六月", "pt_BR %B = junho"});
}

TEST_F(CalendarFormats, KnowNoMomentBeyondAllCalendars) {
    for (const double seconds : {1e17, -1e300, std::strtod("nan", nullptr)})
        EXPECT_FALSE(LocalMoment::at(seconds)) << seconds;
}

} // namespace

} // namespace tavrin::test
