#pragma once

#include <cstddef>
#include <optional>

namespace tavrin {

/// What commands and labels need to know of a list: each takes the number of its entries, absent for no list
/// at all. One way only.
struct ArrayIsEmptyTransformer {
    static constexpr bool transformedValue(std::optional<std::size_t> count) { return !count || *count == 0; }
};

struct ArrayIsNotEmptyTransformer {
    static constexpr bool transformedValue(std::optional<std::size_t> count) { return count && *count > 0; }
};

struct ExactlyOneItemTransformer {
    static constexpr bool transformedValue(std::optional<std::size_t> count) { return count && *count == 1; }
};

struct MoreThanOneObjectInTableTransformer {
    static constexpr bool transformedValue(std::optional<std::size_t> count) { return count && *count > 1; }
};

/// The title of the command that shows or hides the list of steps; absent counts as hidden. One way only.
struct MultiStepDrawerTransformer {
    static constexpr const char* transformedValue(std::optional<bool> isShown) {
        return isShown.value_or(false) ? "Hide Multi-Step Drawer" : "Show Multi-Step Drawer";
    }
};

} // namespace tavrin
