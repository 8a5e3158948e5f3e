#pragma once

#include "store/rows/NodeRow.h"

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavrin {

/// The rows that have children, always in memory: by path, by row, and with the end of their list of
/// children. Not thread-safe.
class FolderTable {
  public:
    struct Folder {
        RowId row = noRow;
        RowId lastChild = noRow;
        std::uint32_t childCount = 0;
        std::string path;
    };

    /// The number of the new folder, from 1. Of two rows with one path the first stays findable by it.
    std::uint32_t add(RowId row, std::string path);
    void remove(std::uint32_t number);
    void clear();

    [[nodiscard]] Folder& at(std::uint32_t number) { return folders[number - 1]; }
    /// The number of the folder whose row this is, 0 for none.
    [[nodiscard]] std::uint32_t numberOfRow(RowId row) const;
    [[nodiscard]] Folder* ofRow(RowId row);
    [[nodiscard]] Folder* withPath(std::string_view path);

  private:
    std::deque<Folder> folders; // stable, since the paths are the keys of the map
    std::vector<std::uint32_t> unused;
    std::unordered_map<RowId, std::uint32_t> numbers;
    std::unordered_map<std::string_view, std::uint32_t> byPath;
};

} // namespace tavrin
