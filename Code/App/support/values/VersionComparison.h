#pragma once

#include <string_view>
#include <vector>

namespace tavrin {

/// Comparisons of version numbers. Results are -1, 0 or 1: the first is older, they are equal, the first is
/// newer. Texts are UTF-8; any text at all is compared, numbers of any length by their value. Pure.
struct VersionComparison {
    /// What counts as newer among releases: the first two numbers, then that a final release is newer than
    /// a pre-release ("9.1b2", "9.1a1"), then pre-releases as a whole. Two final releases with the same first
    /// two numbers give 1, whichever comes first. A missing part counts as empty, which is the oldest.
    static int compareVersion(std::string_view version, std::string_view toVersion);

    /// Chunk by chunk: numbers by value, texts as texts; a text is older than a number or a period, and
    /// "1.0b" is older than "1.0".
    static int standardCompareVersion(std::string_view version, std::string_view toVersion);
    /// Characters of one type in one chunk, every period by itself. Views into `version`.
    static std::vector<std::string_view> splitVersionString(std::string_view version);
    /// 0 when the text begins with a digit from 0 to 9, 2 for ".", 1 for anything else.
    static int typeOfCharacter(std::string_view character);

    /// Character by character, but runs of digits by their value.
    static int numericCompare(std::string_view a, std::string_view b);
};

} // namespace tavrin
