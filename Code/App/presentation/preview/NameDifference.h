#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tavrin {

/// What changed inside a name: the parts of the old one that went, and those of the new one that came. Spans
/// count UTF-16 code units, ascend, and never cut a composed character. Both lists are empty where nothing
/// worth showing stayed, since a name that is coloured throughout says nothing.
struct NameDifference {
    struct Span {
        std::size_t start = 0;
        std::size_t length = 0;
        bool operator==(const Span&) const = default;
    };
    std::vector<Span> removed;
    std::vector<Span> added;

    [[nodiscard]] static NameDifference between(std::u16string_view before, std::u16string_view after);
};

} // namespace tavrin
