#pragma once

#include "store/rows/NodeRow.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

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

    /// Of two rows with one path the first stays findable by it.
    void add(RowId row, std::string path);
    /// Nothing for a row that is no folder.
    void remove(RowId row);

    /// Null for none; valid until the folder is removed.
    [[nodiscard]] Folder* ofRow(RowId row);
    [[nodiscard]] Folder* withPath(std::string_view path);
    /// All of them, in no order.
    [[nodiscard]] const std::unordered_map<RowId, Folder>& all() const { return folders; }

  private:
    std::unordered_map<RowId, Folder> folders; // whose paths are the keys of the other
    std::unordered_map<std::string_view, Folder*> byPath;
};

} // namespace tavrin
