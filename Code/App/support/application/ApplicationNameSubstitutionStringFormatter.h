#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// Puts the second edition's name in the place of the first's, in the texts of panels. Absent stays absent.
struct ApplicationNameSubstitutionStringFormatter {
    [[nodiscard]] static std::optional<std::u16string>
    stringForObjectValue(const std::optional<std::u16string>& text);
    /// Replaces all occurrences of one name, unit for unit.
    static void replaceName(std::u16string& text, std::u16string_view name, std::u16string_view by);
    /// The way back changes nothing.
    [[nodiscard]] static std::u16string getObjectValue(std::u16string forString) { return forString; }
};

} // namespace tavrin
