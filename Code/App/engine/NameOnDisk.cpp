#include "engine/NameOnDisk.h"

#include "support/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr bool isHighHalf(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isByteEscape(char16_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

/// Position manipulations can tear a character in half, and some halves look like an undecodable byte.
bool hasStrayEscape(std::u16string_view finalName, std::string_view currentName) {
    std::u16string current;
    for (std::size_t i = 0; i < finalName.size(); ++i) {
        if (!isByteEscape(finalName[i]) || (i > 0 && isHighHalf(finalName[i - 1])))
            continue;
        if (current.empty())
            current = text::fromBytes(currentName);
        const std::size_t at = current.find(finalName[i]);
        if (at == std::u16string::npos)
            return true;
    }
    return false;
}

} // namespace

bool NameOnDisk::from(std::u16string_view finalName, std::string_view currentName, std::string& into) {
    if (!text::toBytes(finalName, into) || hasStrayEscape(finalName, currentName))
        return false;
    std::replace(into.begin(), into.end(), '/', ':');
    return isPossible(into);
}

bool NameOnDisk::isPossible(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

bool NameOnDisk::differsOnlyInCase(std::string_view a, std::string_view b) {
    const auto isAscii = [](std::string_view name) {
        return std::all_of(name.begin(), name.end(), [](char c) { return (c & 0x80) == 0; });
    };
    if (a == b || (a.size() != b.size() && isAscii(a) && isAscii(b)))
        return false;
    return text::equalIgnoringCase(text::fromBytes(a), text::fromBytes(b));
}

std::string NameOnDisk::shown(std::string_view name) {
    std::string result(name);
    std::replace(result.begin(), result.end(), ':', '/');
    return result;
}

} // namespace tavrin
