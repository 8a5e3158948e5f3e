#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tavrin {

/// Where the views of a stack lie, in points from its top. One of them, the flexible one, takes up the free
/// space but a small margin; each lies directly under the one before.
struct StackedViewLayout {
    struct Place {
        double top;
        double height;
        bool operator==(const Place&) const = default;
    };
    double height = 0; ///< of the stack
    std::vector<Place> places;

    /// `heights` of the views from the top down; for the one at `flexiView` its preferred height counts
    /// instead. `visibleHeight` is what the stack fills at least.
    [[nodiscard]] static StackedViewLayout of(const std::vector<double>& heights,
                                              std::optional<std::size_t> flexiView,
                                              std::int64_t preferredFlexiViewHeight, double visibleHeight);
};

} // namespace tavrin
