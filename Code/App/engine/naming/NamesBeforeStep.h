#pragma once

#include "actions/list/RenameList.h"
#include "store/queries/Predicate.h"
#include "support/values/PropertyValue.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrin {

/// The names with which the rows come to a step, kept from one preview to the next: while nothing changes
/// that they follow from, a preview begins at that step. About 40 MB are kept at most, and nothing of longer
/// lists. Worker threads, under the engine's lock.
class NamesBeforeStep {
  public:
    /// All that the names follow from.
    struct Origin {
        std::uint64_t store = 0;             ///< its serial number
        Predicate filter;                    ///< of the rows
        std::vector<std::uint64_t> versions; ///< of the rows, and of each order that gives ranks
        std::vector<bool> processed;         ///< by id
        PropertyArray steps;                 ///< those in front
        bool operator==(const Origin&) const = default;
    };

    [[nodiscard]] bool isMadeOf(const Origin& other) const { return isWhole && origin == other; }
    void clear() { *this = NamesBeforeStep(); }
    void begin(Origin newOrigin) {
        clear();
        origin = std::move(newOrigin);
    }
    /// The name of the next row, by ascending id.
    void add(std::u16string_view name) {
        units += name.size();
        if (units <= most)
            names.append(name);
    }
    /// All rows have come.
    void end() { isWhole = units <= most; }
    [[nodiscard]] std::u16string_view operator[](std::size_t place) const { return names[place]; }

  private:
    static constexpr std::size_t most = 20'000'000; ///< code units

    Origin origin;
    TextColumn names;
    std::size_t units = 0;
    bool isWhole = false;
};

} // namespace tavrin
