#include "support/application/StackedViewLayout.h"

#include <algorithm>
#include <numeric>

namespace tavrin {

namespace {

constexpr std::int64_t marginBelow = 8; // left free where there is more than that

} // namespace

StackedViewLayout StackedViewLayout::of(const std::vector<double>& heights,
                                        std::optional<std::size_t> flexiView,
                                        std::int64_t preferredFlexiViewHeight, double visibleHeight) {
    std::vector<double> actual = heights;
    if (flexiView)
        actual.at(*flexiView) = static_cast<double>(preferredFlexiViewHeight);
    const double sum = std::accumulate(actual.begin(), actual.end(), 0.0);
    StackedViewLayout layout;
    layout.height = std::max(sum, visibleHeight);
    if (flexiView) {
        const std::int64_t extra = static_cast<std::int64_t>(layout.height) - static_cast<std::int64_t>(sum);
        actual[*flexiView] = static_cast<double>(preferredFlexiViewHeight +
                                                 (extra > marginBelow ? extra - marginBelow : extra));
    }
    double top = 0;
    for (const double height : actual) {
        layout.places.push_back({top, height});
        top += height;
    }
    return layout;
}

} // namespace tavrin
