#include "support/values/CalendarFormat.h"

#include "support/text/Text.h"
#include "support/text/TextIcu.h"

#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace tavrin {

namespace {

/// The least number of digits, 0 for words.
constexpr std::pair<char16_t, int> fieldWidths[]{
    {u'Y', 4}, {u'y', 2}, {u'm', 2}, {u'd', 2}, {u'e', 1}, {u'j', 3}, {u'w', 1},
    {u'H', 2}, {u'I', 2}, {u'M', 2}, {u'S', 2}, {u'F', 3}, {u'B', 0}, {u'b', 0},
    {u'A', 0}, {u'a', 0}, {u'p', 0}, {u'Z', 0}, {u'z', 0},
};

struct Field {
    char16_t letter;
    int width;
    std::size_t length; ///< in the pattern
};

/// The field with which a pattern begins.
std::optional<Field> fieldAtStartOf(std::u16string_view pattern) {
    if (pattern.size() < 2 || pattern[0] != u'%')
        return std::nullopt;
    const bool hasWidth = pattern[1] >= u'0' && pattern[1] <= u'9';
    const std::size_t place = hasWidth ? 2 : 1;
    for (const auto& [letter, width] : fieldWidths)
        if (pattern.substr(place).starts_with(letter)) {
            const bool isNumber = width > 0;
            return Field{letter, isNumber && hasWidth ? std::max(1, pattern[1] - u'0') : width, place + 1};
        }
    return std::nullopt;
}

void appendNumber(int number, int width, std::u16string& result) {
    std::array<char, 12> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    for (auto length = end - digits.data(); length < width; ++length)
        result += u'0';
    result.append(static_cast<const char*>(digits.data()), end);
}

void appendOffset(long seconds, std::u16string& result) {
    const int minutes = static_cast<int>(std::labs(seconds) / 60);
    result += seconds < 0 ? u'-' : u'+';
    appendNumber(minutes / 60 * 100 + minutes % 60, 4, result);
}

int numberOf(char16_t letter, const LocalMoment& moment) {
    const auto& fields = moment.fields;
    switch (letter) {
    case u'Y':
        return fields.tm_year + 1900;
    case u'y':
        return (fields.tm_year % 100 + 100) % 100; // counted from 1900
    case u'm':
        return fields.tm_mon + 1;
    case u'j':
        return fields.tm_yday + 1;
    case u'w':
        return fields.tm_wday;
    case u'H':
        return fields.tm_hour;
    case u'I':
        return (fields.tm_hour + 11) % 12 + 1;
    case u'M':
        return fields.tm_min;
    case u'S':
        return fields.tm_sec;
    case u'F':
        return moment.milliseconds;
    }
    return fields.tm_mday;
}

void appendWord(char16_t letter, const std::tm& fields, const CalendarNames& names, std::u16string& result) {
    const auto month = static_cast<std::size_t>(fields.tm_mon);
    const auto weekday = static_cast<std::size_t>(fields.tm_wday);
    switch (letter) {
    case u'B':
        result += names.months[month];
        break;
    case u'b':
        result += names.shortMonths[month];
        break;
    case u'A':
        result += names.weekdays[weekday];
        break;
    case u'a':
        result += names.shortWeekdays[weekday];
        break;
    case u'p':
        result += names.dayHalves[fields.tm_hour < 12 ? 0 : 1];
        break;
    case u'Z':
        result += text::fromUtf8(fields.tm_zone == nullptr ? "" : fields.tm_zone);
        break;
    case u'z':
        appendOffset(fields.tm_gmtoff, result);
        break;
    }
}

} // namespace

std::optional<LocalMoment> LocalMoment::at(double secondsSince1970) {
    constexpr double most = 1e17; // some billion years, within what an integer holds
    if (!(std::abs(secondsSince1970) < most))
        return std::nullopt;
    const double second = std::floor(secondsSince1970);
    const auto time = static_cast<std::time_t>(second);
    LocalMoment moment;
    if (::localtime_r(&time, &moment.fields) == nullptr)
        return std::nullopt;
    constexpr double slack = 0.001; // a decimal fraction may lie right below itself
    moment.milliseconds = std::min(999, static_cast<int>((secondsSince1970 - second) * 1000.0 + slack));
    return moment;
}

CalendarFormat::CalendarFormat(std::u16string_view pattern, const CalendarNames& namesToUse)
    : names(&namesToUse) {
    std::u16string plain;
    while (!pattern.empty()) {
        if (const auto field = fieldAtStartOf(pattern)) {
            pieces.push_back({std::exchange(plain, {}), field->letter, field->width});
            pattern.remove_prefix(field->length);
        } else {
            plain += pattern.front();
            pattern.remove_prefix(pattern.starts_with(u"%%") ? 2 : 1);
        }
    }
    pieces.push_back({std::move(plain)});
}

void CalendarFormat::append(const LocalMoment& moment, std::u16string& result) const {
    for (const auto& [text, letter, width] : pieces) {
        result += text;
        if (width > 0)
            appendNumber(numberOf(letter, moment), width, result);
        else
            appendWord(letter, moment.fields, *names, result);
    }
}

namespace {

/// Full stops would look like the beginning of an extension, and the no-break blanks beside them are nothing
/// for a name.
std::u16string withoutStops(std::u16string text) {
    std::erase_if(text, [](char16_t unit) { return unit == u'.' || unit == u'\u00A0' || unit == u'\u202F'; });
    return text;
}

/// `from` has at least as many entries for this calendar.
template <std::size_t size>
void take(std::array<std::u16string, size>& into, const icu::UnicodeString* from) {
    for (std::size_t i = 0; i < size; ++i)
        into[i].assign(from[i].getBuffer(), static_cast<std::size_t>(from[i].length()));
}

constexpr const char* english = "en_US";

std::string userLocale() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"})
        if (const char* value = std::getenv(variable); value != nullptr && *value != '\0')
            return value;
    return english;
}

} // namespace

CalendarNames CalendarNames::of(const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const auto wanted = icu::Locale::createCanonical(locale.c_str());
    const icu::DateFormatSymbols symbols(wanted, "gregorian", status);
    const auto found = symbols.getLocale(ULOC_VALID_LOCALE, status);
    text::icu::check(status, "names of months and days");
    // For a language that it does not know, and "C" is one, the library takes that of the messages.
    const std::string_view language = wanted.getLanguage();
    if ((language.empty() || language != found.getLanguage()) && locale != english)
        return of(english);

    CalendarNames names;
    using Symbols = icu::DateFormatSymbols;
    std::int32_t count = 0;
    take(names.months, symbols.getMonths(count));
    take(names.shortMonths, symbols.getShortMonths(count));
    // The lists of weekdays begin with an empty entry.
    take(names.weekdays, symbols.getWeekdays(count, Symbols::FORMAT, Symbols::WIDE) + 1);
    take(names.shortWeekdays, symbols.getWeekdays(count, Symbols::FORMAT, Symbols::ABBREVIATED) + 1);
    take(names.dayHalves, symbols.getAmPmStrings(count));
    std::ranges::transform(names.shortMonths, names.shortMonths.begin(), withoutStops);
    std::ranges::transform(names.shortWeekdays, names.shortWeekdays.begin(), withoutStops);
    std::ranges::transform(names.dayHalves, names.dayHalves.begin(), withoutStops);
    return names;
}

const CalendarNames& CalendarNames::ofUser() {
    static const CalendarNames names = of(userLocale());
    return names;
}

} // namespace tavrin
