#include "support/text/TextIcu.h"
#include "support/values/CalendarFormat.h"

#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace tavrin {

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
