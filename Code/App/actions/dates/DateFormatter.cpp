#include "actions/dates/DateFormatter.h"

#include "platform/desktop/ResourceFolder.h"
#include "platform/files/FileStatus.h"
#include "platform/propertylists/PropertyList.h"
#include "support/application/DebugLog.h"
#include "support/text/Text.h"

#include <algorithm>
#include <string_view>

namespace tavrin {

namespace {

/// By separator mode; the second half puts the time first.
constexpr std::u16string_view separators[]{u" ", u"", u"-", u"_", u"/", u"."};
constexpr std::int32_t separatorCount = std::size(separators);

/// A day is written "DD" with and without a zero in front: no pattern differs in that alone.
struct FieldWord {
    char16_t letter;
    std::string_view word, shortWord;
};
constexpr FieldWord fieldWords[]{
    {u'Y', "YYYY", "YYYY"}, {u'y', "YY", "YY"},   {u'B', "MMMM", "MMMM"}, {u'b', "MMM", "MMM"},
    {u'm', "MM", "M"},      {u'd', "DD", "DD"},   {u'e', "DD", "DD"},     {u'A', "dddd", "dddd"},
    {u'a', "ddd", "ddd"},   {u'j', "DOY", "DOY"}, {u'H', "HH", "H"},      {u'I', "hh", "h"},
    {u'M', "mm", "m"},      {u'S', "ss", "s"},    {u'F', "SSS", "SSS"},   {u'p', "A", "A"},
};

std::vector<std::u16string> readTexts(const std::string& name) {
    const auto list = PropertyList::read(resourcePath(name + ".plist"));
    std::vector<std::u16string> texts;
    if (const auto* error = std::get_if<PropertyListError>(&list)) {
        debugLog("{}", error->message);
    } else if (const auto* array = std::get<PropertyValue>(list).asArray()) {
        for (const auto& value : *array)
            texts.push_back(textOrData(value).value_or(std::u16string()));
    }
    return texts;
}

} // namespace

std::int32_t translateIndex(std::int32_t index, const std::string& fromPList, const std::string& toPList) {
    const auto from = readTexts(fromPList);
    if (index < 0 || static_cast<std::size_t>(index) >= from.size())
        return -1;
    const auto to = readTexts(toPList);
    const auto found = std::find(to.begin(), to.end(), from[static_cast<std::size_t>(index)]);
    return found == to.end() ? -1 : static_cast<std::int32_t>(found - to.begin());
}

std::string recipeWordOfDatePattern(std::u16string_view pattern) {
    std::string word;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != u'%' || i + 1 == pattern.size()) {
            word += text::toUtf8(pattern.substr(i, 1));
            continue;
        }
        const bool isShort = pattern[i + 1] == u'1' && i + 2 < pattern.size();
        i += isShort ? 2 : 1;
        const auto field = std::ranges::find(fieldWords, pattern[i], &FieldWord::letter);
        if (field != std::end(fieldWords))
            word += isShort ? field->shortWord : field->word;
    }
    return word;
}

DateFormatter::Table::Table(const std::string& patterns, const std::string& menu,
                            const CalendarNames& names) {
    for (const auto& pattern : readTexts(patterns))
        formats.emplace_back(pattern, names), words.push_back(recipeWordOfDatePattern(pattern));
    for (const auto& label : readTexts(menu))
        labels.push_back(text::toUtf8(label));
    for (std::size_t i = 0; i < std::min(formats.size(), labels.size()); ++i)
        choices.push_back({static_cast<std::int32_t>(i), labels[i], words[i]});
}

const CalendarFormat* DateFormatter::Table::at(std::int32_t index) const {
    if (index <= 0 || static_cast<std::size_t>(index) >= formats.size())
        return nullptr;
    return &formats[static_cast<std::size_t>(index)];
}

DateFormatter::DateFormatter(const CalendarNames& names)
    : dates("datePatterns", "datePatterns menu", names), times("timePatterns", "timePatterns menu", names) {}

const DateFormatter& DateFormatter::instance() {
    static const DateFormatter formatter;
    return formatter;
}

std::optional<std::u16string> DateFormatter::formatDate(double date, std::int32_t dateIndex,
                                                        std::int32_t timeIndex, std::int32_t separatorMode,
                                                        bool uppercase) const {
    const auto moment = LocalMoment::at(date + static_cast<double>(referenceDateSince1970));
    if (!moment)
        return std::nullopt;
    std::u16string datePart;
    std::u16string timePart;
    const auto* const dateFormat = dates.at(dateIndex);
    const auto* const timeFormat = times.at(timeIndex);
    if (timeFormat != nullptr) {
        timeFormat->append(*moment, timePart);
        if (!uppercase)
            timePart = text::lowercased(timePart);
    }
    if (dateFormat == nullptr)
        return timePart;
    dateFormat->append(*moment, datePart);
    if (timeFormat == nullptr)
        return datePart;
    if (separatorMode < 0 || separatorMode >= 2 * separatorCount)
        return std::nullopt;
    const bool isTimeFirst = separatorMode >= separatorCount;
    auto& first = isTimeFirst ? timePart : datePart;
    first += separators[separatorMode % separatorCount];
    first += isTimeFirst ? datePart : timePart;
    return first;
}

} // namespace tavrin
