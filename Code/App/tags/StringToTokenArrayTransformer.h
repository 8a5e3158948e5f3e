#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// Between the pattern of an action and the entries of the field that edits it.
struct StringToTokenArrayTransformer {
    /// Nothing for no pattern and for an empty one.
    [[nodiscard]] static std::optional<std::vector<std::u16string>>
    transformedValue(const std::optional<std::u16string>& pattern);
    /// Empty for no entries.
    [[nodiscard]] static std::u16string
    reverseTransformedValue(const std::optional<std::vector<std::u16string>>& tokens);
};

} // namespace tavrin
