#pragma once

#include "store/contexts/StagedChanges.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavrin {

/// The source items by path, each with its place in the order of adding. Not thread-safe.
class SourceItemTable {
  public:
    void apply(const SourceItemChange& change);

    [[nodiscard]] bool contains(std::string_view path) const { return items.contains(path); }
    [[nodiscard]] std::size_t count() const { return items.size(); }
    /// How many have ever been removed.
    [[nodiscard]] std::size_t removals() const { return removed; }
    /// Whether one begins with the folder's path and a "/".
    [[nodiscard]] bool hasBelow(std::string_view folder) const { return holding.contains(folder); }
    [[nodiscard]] std::vector<SourceItem> inOrderAdded() const;

  private:
    void insert(const SourceItem& item);
    void remove(std::string_view path);
    void setRead(std::string_view path, bool readInRoot, bool readInSubfolders);

    struct Entry {
        std::uint64_t order = 0;
        bool treatAsFolder = false;
        bool readInRoot = false;
        bool readInSubfolders = false;
        std::uint32_t look = 0;
    };
    static SourceItem itemOf(const std::string& path, const Entry& entry);

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view path) const { return std::hash<std::string_view>()(path); }
    };
    template <typename Value> using ByPath = std::unordered_map<std::string, Value, Hash, std::equal_to<>>;

    ByPath<Entry> items;
    /// Of each folder in which items lie, at whatever depth: how many items and such folders lie right in it.
    ByPath<std::uint32_t> holding;
    std::uint64_t nextOrder = 0;
    std::size_t removed = 0;
};

} // namespace tavrin
