#include "engine/renaming/NameOnDisk.h"

#include "support/text/Text.h"

#include <algorithm>
#include <bitset>
#include <utility>

namespace tavrin {

namespace {

constexpr bool isHighHalf(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isByteEscape(char16_t unit) { return unit >= 0xDC80 && unit <= 0xDCFF; }

/// The bytes from 0x80 that stand alone in the text, escaped as stray halves.
std::bitset<128> escapedBytes(std::u16string_view text) {
    std::bitset<128> bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isByteEscape(text[i]) && (i == 0 || !isHighHalf(text[i - 1])))
            bytes.set(text[i] - 0xDC80);
    }
    return bytes;
}

/// Actions count in code units and can tear a character in half; some halves look like an undecodable byte.
bool hasStrayHalf(std::u16string_view finalName, std::string_view currentName) {
    const std::bitset<128> wanted = escapedBytes(finalName);
    return wanted.any() && (wanted & ~escapedBytes(text::fromBytes(currentName))).any();
}

/// Both without what they begin and end with in common.
std::pair<std::string_view, std::string_view> unlikeParts(std::string_view a, std::string_view b) {
    const auto [endA, endB] = std::ranges::mismatch(a, b);
    a.remove_prefix(static_cast<std::size_t>(endA - a.begin()));
    b.remove_prefix(static_cast<std::size_t>(endB - b.begin()));
    const auto suffix = static_cast<std::size_t>(
        std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend()).first - a.rbegin());
    a.remove_suffix(suffix);
    b.remove_suffix(suffix);
    return {a, b};
}

} // namespace

bool nameOnDisk::from(std::u16string_view finalName, std::string_view currentName, std::string& into,
                      bool isExact) {
    if (!text::toBytes(finalName, into) || (!isExact && hasStrayHalf(finalName, currentName)))
        return false;
    std::replace(into.begin(), into.end(), '/', ':');
    return isPossible(into);
}

NameProblem nameOnDisk::problemOf(std::u16string_view finalName, std::string_view currentName, bool isExact) {
    std::string bytes;
    if (finalName.empty())
        return NameProblem::empty;
    if (!text::toBytes(finalName, bytes) || (!isExact && hasStrayHalf(finalName, currentName)))
        return NameProblem::cutCharacter;
    if (bytes.find('\0') != std::string::npos)
        return NameProblem::holdsNul;
    return bytes == "." || bytes == ".." ? NameProblem::standsForFolder : NameProblem::none;
}

bool nameOnDisk::isPossible(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

bool nameOnDisk::differsOnlyInCase(std::string_view a, std::string_view b) {
    const auto isAscii = [](std::string_view name) {
        return std::all_of(name.begin(), name.end(), [](char c) { return (c & 0x80) == 0; });
    };
    if (a == b)
        return false;
    const auto [restOfA, restOfB] = unlikeParts(a, b);
    if (isAscii(restOfA) && isAscii(restOfB)) { // a part of no character beside them
        const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c; };
        return std::ranges::equal(restOfA, restOfB, {}, lower, lower);
    }
    return text::equalIgnoringCase(text::fromBytes(a), text::fromBytes(b));
}

std::string nameOnDisk::shown(std::string_view name) {
    std::string result(name);
    std::replace(result.begin(), result.end(), ':', '/');
    return result;
}

} // namespace tavrin
