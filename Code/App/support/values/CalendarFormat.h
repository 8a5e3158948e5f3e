#pragma once

#include <array>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The words of a language for dates. Abbreviations come without full stops: "Jan", not "Jan.".
struct CalendarNames {
    std::array<std::u16string, 12> months;
    std::array<std::u16string, 12> shortMonths;
    std::array<std::u16string, 7> weekdays; ///< Sunday first
    std::array<std::u16string, 7> shortWeekdays;
    std::array<std::u16string, 2> dayHalves; ///< before and after noon

    /// Those of a locale as the environment names it, such as "de_DE.UTF-8"; "C" is English.
    [[nodiscard]] static CalendarNames of(const std::string& locale);
    /// Those of the locale for times that the environment tells; made once.
    [[nodiscard]] static const CalendarNames& ofUser();
};

/// A moment in the user's time zone.
struct LocalMoment {
    std::tm fields{};
    int milliseconds = 0;

    /// Absent where the year is beyond all calendars.
    [[nodiscard]] static std::optional<LocalMoment> at(double secondsSince1970);
};

/// A date format, made once and used for many dates. "%" and a letter stand for a field of the date:
///
///     %Y %y  year in four digits, in two        %H %I  hour to 23, to 12
///     %m     month                              %M %S  minute, second
///     %B %b  its name, short                    %F     milliseconds in three digits
///     %d %e  day in two digits, as it comes     %p     the name of the half of the day
///     %j     day of the year in three digits    %Z %z  time zone by name, as "+0100"
///     %A %a  name of the weekday, short         %w     its number, Sunday 0
///
/// A digit behind "%" is the least width of a number instead: "%1H". "%%" is a percent sign, and anything
/// else stays as it is. Digits are always ASCII. Safe from any thread.
class CalendarFormat {
  public:
    /// `names` is not copied and must outlive the object.
    explicit CalendarFormat(std::u16string_view pattern,
                            const CalendarNames& names = CalendarNames::ofUser());

    void append(const LocalMoment& moment, std::u16string& result) const;

  private:
    /// Plain text, then a field: a number of at least `width` digits, a word where that is 0, none for the
    /// letter 0.
    struct Piece {
        std::u16string text;
        char16_t letter = 0;
        int width = 0;
    };

    std::vector<Piece> pieces;
    const CalendarNames* names;
};

} // namespace tavrin
