#pragma once

#include "store/rows/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace tavrin {

class StoreContext;

/// The folders that have rows in them, told by what they are instead of by their paths: so that an item that
/// comes up again under another path (through a link or a bind mount) gets no second row, and no second new
/// name. Keeps an entry for each folder; names only of folders that come up under several paths.
class FolderAliases {
  public:
    /// Begins with the folders that have rows in the store. Everything is committed.
    explicit FolderAliases(StoreContext& context);

    /// The folder of this row is about to get rows: whether other rows stand for the same folder. Everything
    /// is committed where `mayBeShared` says so.
    [[nodiscard]] bool enter(RowId folder, const FileIdentity& identity);
    /// Whether that would find another row than this.
    [[nodiscard]] bool mayBeShared(RowId folder, const FileIdentity& identity) const;

    /// The row that stands for the item of that name in the folder under another path, or noRow. For folders
    /// that are shared.
    [[nodiscard]] RowId find(RowId folder, const FileIdentity& identity, std::string_view name);
    /// An item of a shared folder has got a row.
    void add(const FileIdentity& identity, std::string_view name, RowId row);

  private:
    struct Hash {
        std::size_t operator()(const FileIdentity& identity) const {
            return std::hash<std::uint64_t>{}(identity.inode * 0x9E3779B97F4A7C15U ^ identity.device);
        }
    };

    void addChildren(RowId folder, const FileIdentity& identity);

    StoreContext& context;
    std::unordered_multimap<FileIdentity, RowId, Hash> folders;
    std::unordered_set<RowId> withNames;                ///< those whose items are in `rows`
    std::unordered_multimap<std::uint64_t, RowId> rows; ///< by the hash of folder and name
};

} // namespace tavrin
