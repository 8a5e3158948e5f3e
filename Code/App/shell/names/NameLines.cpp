#include "shell/names/NameLines.h"

#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

bool isControl(char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); }

bool endsLine(char16_t unit) {
    return unit == u'\n' || unit == u'\r' || unit == 0x2028 || unit == 0x2029 || unit == 0x85;
}

/// Marks that reorder what stands around them, so that a name would not be what it looks like.
bool reorders(char16_t unit) {
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

bool isUnfit(char16_t unit) { return isControl(unit) || reorders(unit) || endsLine(unit); }

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
        line.locked = "holds a line break, change it by a step";
    else if (std::ranges::any_of(name, isControl))
        line.locked = "holds a control character, change it by a step";
    else if (std::ranges::any_of(name, reorders))
        line.locked = "holds a mark that reorders letters, change it by a step";
    else if (text::hasEscape(name))
        line.locked = "is not UTF-8, change it by a step";
    if (line.locked.empty())
        return line;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool isHalf = name[i] >= 0xD800 && name[i] <= 0xDFFF;
        const bool isPaired =
            isHalf && ((name[i] < 0xDC00 && i + 1 < name.size() && (name[i + 1] & 0xFC00) == 0xDC00) ||
                       (name[i] >= 0xDC00 && i > 0 && (name[i - 1] & 0xFC00) == 0xD800));
        if (isUnfit(name[i]) || (isHalf && !isPaired))
            line.text[i] = signFor(name[i]);
    }
    return line;
}

nameLines::Pasted nameLines::pasted(std::u16string_view text, std::size_t wanted) {
    Pasted result;
    while (!text.empty()) {
        const auto end = static_cast<std::size_t>(std::ranges::find_if(text, endsLine) - text.begin());
        if (result.count++ < wanted) {
            std::u16string line(text.substr(0, end));
            result.changed += std::erase_if(line, isUnfit) > 0 ? 1 : 0;
            result.lines.push_back(std::move(line));
        }
        text.remove_prefix(end);
        const bool isPair = text.starts_with(u"\r\n");
        text.remove_prefix(std::min<std::size_t>(isPair ? 2 : 1, text.size()));
    }
    return result;
}

} // namespace tavrin
