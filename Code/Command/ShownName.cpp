#include "ShownName.h"

#include "support/text/DisplayText.h"
#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::string_view ellipsis = "…";

} // namespace

void paint::append(std::string_view text, const Paint& how, std::string& into) {
    if (text.empty() || how.text.empty()) {
        into += text;
        return;
    }
    const auto appendWith = [&](std::string_view begin, std::string_view part) {
        if (!part.empty())
            ((into += begin) += part) += end;
    };
    const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
    const std::size_t last = first == text.size() ? first : text.find_last_not_of(' ') + 1;
    const std::string_view blank = how.blank.empty() ? how.text : how.blank;
    appendWith(blank, text.substr(0, first));
    appendWith(how.text, text.substr(first, last - first));
    appendWith(blank, text.substr(last));
}

void ShownName::set(std::u16string_view name, bool makeVisible) {
    text.clear();
    characters.clear();
    different = {};
    std::size_t columns = 0;
    for (const std::u16string_view character : text::composedSequences(name)) {
        if (makeVisible) {
            const std::string shown = display::visible(character);
            // An escape is longer than what it stands for.
            columns += shown.size() > 1 && shown.front() == '\\' ? shown.size() : display::columns(character);
            text += shown;
        } else {
            text += text::toBytes(character).value_or(text::toUtf8(character));
            columns += display::columns(character);
        }
        characters.push_back({text.size(), columns});
    }
}

void ShownName::compare(ShownName& one, ShownName& other) {
    const std::size_t length = std::min(one.characters.size(), other.characters.size());
    const auto areAlike = [&](std::size_t a, std::size_t b) {
        return one.between(a, a + 1) == other.between(b, b + 1);
    };
    std::size_t begin = 0;
    while (begin < length && areAlike(begin, begin))
        ++begin;
    std::size_t end = 0;
    while (end < length - begin &&
           areAlike(one.characters.size() - end - 1, other.characters.size() - end - 1))
        ++end;
    one.different = {begin, one.characters.size() - end};
    other.different = {begin, other.characters.size() - end};
}

std::size_t ShownName::columnsBetween(std::size_t begin, std::size_t end) const {
    const auto upTo = [this](std::size_t index) { return index == 0 ? 0 : characters[index - 1].columns; };
    return upTo(end) - upTo(begin);
}

std::string_view ShownName::between(std::size_t begin, std::size_t end) const {
    const auto upTo = [this](std::size_t index) { return index == 0 ? 0 : characters[index - 1].end; };
    return std::string_view(text).substr(upTo(begin), upTo(end) - upTo(begin));
}

ShownName::Range ShownName::rangeFrom(std::size_t begin, std::size_t wantedColumns) const {
    Range range{begin, begin};
    while (range.end < characters.size() && columnsBetween(begin, range.end) < wantedColumns)
        ++range.end;
    return range;
}

ShownName::Range ShownName::leftOut(std::size_t mostColumns) const {
    const std::size_t excess = columns() - mostColumns + 1; // one for what stands in its place
    std::size_t middle = 0;
    while (middle < characters.size() && columnsBetween(0, middle) < mostColumns / 2)
        ++middle;
    const Range central =
        rangeFrom(columnsBetween(0, middle) > mostColumns / 2 ? middle - 1 : middle, excess);
    if (!meetsDifference(central))
        return central;
    // Behind the difference, or before it; the name's first and last character stay.
    if (const Range behind = rangeFrom(std::max<std::size_t>(different.end, 1), excess);
        behind.end < characters.size() && columnsBetween(behind.begin, behind.end) >= excess)
        return behind;
    std::size_t begin = different.begin;
    while (begin > 1 && columnsBetween(begin, different.begin) < excess)
        --begin;
    const Range before{begin, different.begin};
    return begin >= 1 && columnsBetween(before.begin, before.end) >= excess ? before : central;
}

std::size_t ShownName::append(std::size_t mostColumns, const Paint& difference, std::string& into) const {
    if (columns() <= mostColumns) {
        appendPart({0, characters.size()}, difference, into);
        return columns();
    }
    const Range without = leftOut(std::max<std::size_t>(mostColumns, 1));
    appendPart({0, without.begin}, difference, into);
    paint::append(ellipsis, meetsDifference(without) ? difference : paint::plain, into);
    appendPart({without.end, characters.size()}, difference, into);
    return columnsBetween(0, without.begin) + 1 + columnsBetween(without.end, characters.size());
}

void ShownName::appendPart(const Range& part, const Paint& difference, std::string& into) const {
    const auto clamped = [&](std::size_t index) { return std::clamp(index, part.begin, part.end); };
    into += between(part.begin, clamped(different.begin));
    paint::append(between(clamped(different.begin), clamped(different.end)), difference, into);
    into += between(clamped(different.end), part.end);
}

} // namespace tavrin
