#pragma once

#include "store/contexts/SmallEntities.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavrin {

/// How the items of a list lie inside each other. The list outlives it, unchanged.
class NestedItems {
  public:
    explicit NestedItems(const std::vector<SourceItem>& items);

    [[nodiscard]] bool contains(std::string_view path) const { return places.contains(path); }
    /// The item that lies closest above this one, by their places on the list.
    [[nodiscard]] std::optional<std::size_t> above(std::size_t place) const;
    /// The path of the item above all others that hold this one; its own where there is none.
    [[nodiscard]] const std::string& outermost(std::size_t place) const;
    [[nodiscard]] bool holdsOthers(std::size_t place) const { return holds[place]; }

  private:
    [[nodiscard]] std::size_t findAbove(std::string_view path) const;

    const std::vector<SourceItem>& list;
    std::unordered_map<std::string_view, std::size_t> places;
    std::vector<std::size_t> nearest; ///< `nowhere` without one
    std::vector<bool> holds;
};

} // namespace tavrin
