#pragma once

#include <optional>

namespace tavrin {

/// The title of the command that shows or hides the list of steps; absent counts as hidden. One way only.
struct MultiStepDrawerTransformer {
    static constexpr const char* transformedValue(std::optional<bool> isShown) {
        return isShown.value_or(false) ? "Hide Multi-Step Drawer" : "Show Multi-Step Drawer";
    }
};

} // namespace tavrin
