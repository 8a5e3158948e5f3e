#include "shell/names/NameLines.h"

#include "support/text/DisplayText.h"
#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool isControl(char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); }

bool endsLine(char16_t unit) {
    return unit == u'\n' || unit == u'\r' || unit == 0x2028 || unit == 0x2029 || unit == 0x85;
}

/// Marks that reorder what stands around them, so that a name would not be what it looks like.
bool reorders(char16_t unit) {
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

bool isUnfit(char16_t unit) { return isControl(unit) || reorders(unit) || endsLine(unit); }

/// Whether a unit is one of a pair without the other.
bool isLoneHalf(std::u16string_view text, std::size_t place) {
    const auto isHalfFrom = [text](std::size_t i, char16_t first) {
        return i < text.size() && (text[i] & 0xFC00) == first;
    };
    return (isHalfFrom(place, 0xD800) && !isHalfFrom(place + 1, 0xDC00)) ||
           (isHalfFrom(place, 0xDC00) && (place == 0 || !isHalfFrom(place - 1, 0xD800)));
}

/// Without what no line may hold.
std::u16string fitPart(std::u16string_view line) {
    std::u16string fit;
    for (std::size_t i = 0; i < line.size(); ++i)
        if (!isUnfit(line[i]) && !isLoneHalf(line, i))
            fit += line[i];
    return fit;
}

char16_t signFor(char16_t unit) {
    constexpr char16_t pictures = 0x2400; // of the control characters, in their order
    constexpr char16_t ofDelete = 0x2421;
    return unit < 0x20 ? static_cast<char16_t>(pictures + unit) : unit == 0x7F ? ofDelete : u'\uFFFD';
}

} // namespace

std::string_view nameLines::hindrance(std::u16string_view name) {
    if (name.starts_with(u'"'))
        return "it begins with a quote";
    if (name.starts_with(u' ') || name.ends_with(u' '))
        return "it begins or ends with a blank";
    if (std::ranges::any_of(name, isControl))
        return "it holds a control character";
    return text::hasEscape(name) ? "it is not UTF-8" : "";
}

std::string_view nameLines::wrongWith(const std::optional<std::string>& bytes) {
    if (!bytes)
        return "it holds half a character";
    if (bytes->empty())
        return "the name is empty";
    if (*bytes == "." || *bytes == "..")
        return "this name stands for a folder itself";
    if (bytes->find('/') != std::string::npos)
        return "a name holds no \"/\"";
    return bytes->find('\0') != std::string::npos ? "a name holds no NUL" : "";
}

nameLines::Line nameLines::lineOf(std::u16string_view name) {
    Line line{std::u16string(name), {}};
    if (std::ranges::any_of(name, endsLine))
        line.lock = Lock::lineBreak;
    else if (std::ranges::any_of(name, isControl))
        line.lock = Lock::controlCharacter;
    else if (std::ranges::any_of(name, reorders))
        line.lock = Lock::reorderingMark;
    else if (text::hasEscape(name))
        line.lock = Lock::notUtf8;
    if (line.lock == Lock::none)
        return line;
    for (std::size_t i = 0; i < name.size(); ++i)
        if (isUnfit(name[i]) || isLoneHalf(name, i))
            line.text[i] = signFor(name[i]);
    return line;
}

nameLines::Pasted nameLines::pasted(std::u16string_view text, std::size_t wanted) {
    Pasted result;
    while (!text.empty()) {
        const auto end = static_cast<std::size_t>(std::ranges::find_if(text, endsLine) - text.begin());
        if (result.count++ < wanted) {
            const std::u16string_view line = text.substr(0, std::min(end, longestLine + 1));
            result.lines.push_back(fitPart(line));
            result.changed += result.lines.back().size() < line.size() ? 1 : 0;
        }
        text.remove_prefix(end);
        const bool isPair = text.starts_with(u"\r\n");
        text.remove_prefix(std::min<std::size_t>(isPair ? 2 : 1, text.size()));
    }
    return result;
}

std::string nameLines::fileOf(std::span<const std::u16string> lines) {
    std::string file;
    for (const std::u16string& line : lines)
        (file += text::toUtf8(line)) += '\n';
    return file;
}

nameLines::Edited nameLines::edited(std::string_view file, std::span<const std::u16string> written) {
    if (file.starts_with(byteOrderMark))
        file.remove_prefix(byteOrderMark.size());
    if (!text::isUtf8(file))
        return {Edited::Fault::notUtf8};
    Pasted found = pasted(text::fromBytes(file), written.size());
    Edited result{found.count == written.size() ? Edited::Fault::none : Edited::Fault::otherCount,
                  found.count,
                  {},
                  found.changed};
    for (std::size_t i = 0; result.fault == Edited::Fault::none && i < written.size(); ++i)
        if (found.lines[i] != written[i] && !text::canonicallyEqual(found.lines[i], written[i]))
            result.lines.emplace_back(i, std::move(found.lines[i]));
    return result;
}

std::optional<nameLines::Stretch> nameLines::stretchBetween(std::u16string_view line, std::size_t from,
                                                            std::size_t to) {
    if (text::isAscii(line))
        return from <= line.size() ? std::optional(Stretch{from, std::min(to, line.size()) - from})
                                   : std::nullopt;
    std::optional<std::size_t> start;
    std::size_t column = 0;
    std::size_t place = 0;
    while (place < line.size()) {
        if (column >= from && !start)
            start = place;
        if (column >= to)
            break;
        const std::size_t end = text::composedSequenceEnd(line, place);
        column += display::columns(line.substr(place, end - place));
        place = end;
    }
    if (!start && column >= from)
        start = place;
    return start ? std::optional(Stretch{*start, place - *start}) : std::nullopt;
}

} // namespace tavrin
