#pragma once

#include "store/contexts/StagedChanges.h"
#include "store/rows/NameSlots.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tavrin {

/// The source items in the order of adding, found by path. Not thread-safe.
class SourceItemTable {
  public:
    void apply(const SourceItemChange& change);

    [[nodiscard]] bool contains(std::string_view path) const { return find(path) != nullptr; }
    [[nodiscard]] std::size_t count() const { return items.size() - gaps; }
    /// How many have ever been removed.
    [[nodiscard]] std::size_t removals() const { return removed; }
    /// Whether one begins with the folder's path and a "/".
    [[nodiscard]] bool hasBelow(std::string_view folder) const { return holding.contains(folder); }
    [[nodiscard]] std::vector<SourceItem> inOrderAdded() const;

  private:
    void insert(const SourceItem& item);
    void remove(std::string_view path);
    void setRead(std::string_view path, bool readInRoot, bool readInSubfolders);
    /// Null when it is not here.
    [[nodiscard]] const SourceItem* find(std::string_view path) const;
    [[nodiscard]] SourceItem* find(std::string_view path) {
        return const_cast<SourceItem*>(std::as_const(*this).find(path));
    }
    /// Forgets the places of removed items.
    void closeGaps();

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view path) const { return std::hash<std::string_view>()(path); }
    };

    std::vector<SourceItem> items; ///< in the order added; removed ones have no path
    NameSlots places;              ///< in `items`, counted from 1, by path
    std::size_t gaps = 0;
    /// Of each folder in which items lie, at whatever depth: how many items and such folders lie right in it.
    std::unordered_map<std::string, std::uint32_t, Hash, std::equal_to<>> holding;
    std::size_t removed = 0;
};

} // namespace tavrin
