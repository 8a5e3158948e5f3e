#pragma once

#include "store/contexts/StagedChanges.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The source items by path, each with its place in the order of adding. Not thread-safe.
class SourceItemTable {
  public:
    void apply(const SourceItemChange& change);

    [[nodiscard]] std::optional<SourceItem> find(std::string_view path) const;
    [[nodiscard]] std::size_t count() const { return items.size(); }
    /// Whether one begins with the folder's path and a "/".
    [[nodiscard]] bool hasBelow(std::string_view folder) const;
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
    };
    std::map<std::string, Entry, std::less<>> items;
    std::uint64_t nextOrder = 0;
};

} // namespace tavrin
