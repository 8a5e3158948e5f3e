#include "support/values/VersionComparison.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::string_view separators = "._ab";
constexpr int numberType = 0;
constexpr int stringType = 1;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

int signOf(int order) { return (order > 0) - (order < 0); }

std::string_view takeDigits(std::string_view& text) {
    const auto end = static_cast<std::size_t>(std::ranges::find_if_not(text, isDigit) - text.begin());
    const std::string_view digits = text.substr(0, end);
    text.remove_prefix(end);
    return digits;
}

/// Of two runs of digits, whatever their length.
int compareNumbers(std::string_view a, std::string_view b) {
    a.remove_prefix(std::min(a.find_first_not_of('0'), a.size()));
    b.remove_prefix(std::min(b.find_first_not_of('0'), b.size()));
    if (a.size() != b.size())
        return a.size() < b.size() ? -1 : 1;
    return signOf(a.compare(b));
}

/// The first part, and what stands between the first two separators.
struct LeadingParts {
    std::string_view first;
    std::string_view second;
};

LeadingParts leadingParts(std::string_view version) {
    const std::size_t firstEnd = version.find_first_of(separators);
    if (firstEnd == std::string_view::npos)
        return {version, {}};
    const std::string_view rest = version.substr(firstEnd + 1);
    return {version.substr(0, firstEnd), rest.substr(0, rest.find_first_of(separators))};
}

bool isFinal(std::string_view version) { return version.find_first_of("ab") == std::string_view::npos; }

} // namespace

int VersionComparison::numericCompare(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty()) {
        if (isDigit(a.front()) && isDigit(b.front())) {
            if (const int order = compareNumbers(takeDigits(a), takeDigits(b)))
                return order;
            continue;
        }
        if (a.front() != b.front())
            return static_cast<unsigned char>(a.front()) < static_cast<unsigned char>(b.front()) ? -1 : 1;
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    return static_cast<int>(b.empty()) - static_cast<int>(a.empty());
}

int VersionComparison::compareVersion(std::string_view version, std::string_view toVersion) {
    const LeadingParts parts = leadingParts(version);
    const LeadingParts otherParts = leadingParts(toVersion);
    if (const int order = numericCompare(parts.first, otherParts.first))
        return order;
    if (const int order = numericCompare(parts.second, otherParts.second))
        return order;
    if (isFinal(version))
        return 1;
    if (isFinal(toVersion))
        return -1;
    return numericCompare(version, toVersion);
}

int VersionComparison::typeOfCharacter(std::string_view character) {
    if (character == ".")
        return 2;
    return !character.empty() && isDigit(character.front()) ? numberType : stringType;
}

std::vector<std::string_view> VersionComparison::splitVersionString(std::string_view version) {
    std::vector<std::string_view> chunks;
    for (std::size_t start = 0; start < version.size();) {
        const int type = typeOfCharacter(version.substr(start, 1));
        std::size_t end = start + 1;
        while (type <= stringType && end < version.size() && typeOfCharacter(version.substr(end, 1)) == type)
            ++end;
        chunks.push_back(version.substr(start, end - start));
        start = end;
    }
    return chunks;
}

int VersionComparison::standardCompareVersion(std::string_view version, std::string_view toVersion) {
    const std::vector<std::string_view> chunks = splitVersionString(version);
    const std::vector<std::string_view> others = splitVersionString(toVersion);
    const std::size_t common = std::min(chunks.size(), others.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int type = typeOfCharacter(chunks[i]);
        const int otherType = typeOfCharacter(others[i]);
        if (type != otherType) {
            if (type == stringType || otherType == stringType)
                return type == stringType ? -1 : 1;
            return type == numberType ? 1 : -1;
        }
        const int order =
            type == numberType ? compareNumbers(chunks[i], others[i]) : signOf(chunks[i].compare(others[i]));
        if (order != 0)
            return order;
    }
    if (chunks.size() == others.size())
        return 0;
    const bool isLonger = chunks.size() > others.size();
    const bool hasTextBehind = typeOfCharacter(isLonger ? chunks[common] : others[common]) == stringType;
    return isLonger != hasTextBehind ? 1 : -1;
}

} // namespace tavrin
