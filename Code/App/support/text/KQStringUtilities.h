#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Small string functions. Pure, safe from any thread.
struct KQStringUtilities {
    /// The UTF-16 code units as one-unit strings.
    static std::vector<std::u16string> characterArrayFrom(std::u16string_view text);
    static std::u16string replaceNilWithEmptyString(const std::optional<std::u16string>& text);
    /// First unit upper-cased, the rest lower-cased; empty and absent come back as they are.
    static std::optional<std::u16string> sentenceCase(const std::optional<std::u16string>& text);
    /// Answers nothing; the working form belongs to the roman numeral actions.
    static std::optional<std::u16string> romanNumeral(int number);
    /// Each run of ASCII digits replaced by its value as "%032d", saturating at 2147483647: the key of
    /// natural order.
    static std::u16string expandNumberBlocks(std::u16string_view text);
    static std::u16string replaceColonWithForwardSlash(std::u16string_view text);
    static std::u16string replaceForwardSlashWithColon(std::u16string_view text);
    /// The composed character sequences of a text, in order.
    static std::vector<std::u16string> decomposeIntoStringArray(std::u16string_view text);
};

} // namespace tavrin
