#pragma once

#include "actions/ParameterDescription.h"
#include "support/values/CalendarFormat.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavrin {

/// Moves a stored menu index between two versions of a list: looks it up in the first property list of the
/// resources (names without ".plist") and gives the index of the same entry in the second; -1 when there is
/// no such entry or list.
[[nodiscard]] std::int32_t translateIndex(std::int32_t index, const std::string& fromPList,
                                          const std::string& toPList);

/// A pattern as recipes have it: "YYYY-MM-DD" for "%Y-%m-%d".
[[nodiscard]] std::string recipeWordOfDatePattern(std::u16string_view pattern);

/// Dates as texts, by patterns that the user chooses from two tables of the resources. Read-only once made,
/// so safe from any thread.
class DateFormatter {
  public:
    explicit DateFormatter(const CalendarNames& names = CalendarNames::ofUser());
    DateFormatter(const DateFormatter&) = delete;
    DateFormatter& operator=(const DateFormatter&) = delete;
    /// Made at the first call, and kept: the descriptions of parameters refer to its choices.
    static const DateFormatter& instance();

    /// `date` in seconds since 2001. An index of 0, and any outside its table, leaves its part out; with both
    /// the text is empty. Separator modes 0 to 5 put the date first, 6 to 11 the time. Without `uppercase`
    /// the whole time part is in lower case. Absent where two parts have no such separator mode, and for
    /// dates beyond all calendars.
    [[nodiscard]] std::optional<std::u16string> formatDate(double date, std::int32_t dateIndex,
                                                           std::int32_t timeIndex,
                                                           std::int32_t separatorMode = 0,
                                                           bool uppercase = false) const;

    /// What the indexes stand for, shown by an example of each.
    [[nodiscard]] std::span<const ParameterChoice> dateChoices() const { return dates.choices; }
    [[nodiscard]] std::span<const ParameterChoice> timeChoices() const { return times.choices; }

  private:
    struct Table {
        std::vector<CalendarFormat> formats; ///< the first one stands for none
        std::vector<std::string> labels;
        std::vector<std::string> words;       ///< of recipes
        std::vector<ParameterChoice> choices; ///< with views into both

        Table(const std::string& patterns, const std::string& menu, const CalendarNames& names);
        [[nodiscard]] const CalendarFormat* at(std::int32_t index) const;
    };

    Table dates;
    Table times;
};

} // namespace tavrin
