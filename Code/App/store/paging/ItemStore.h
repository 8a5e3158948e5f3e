#pragma once

#include "store/rows/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

class StoreContext;

/// What one commit has changed, for contexts that show rows.
struct StoreChanges {
    const StoreContext* committer = nullptr;
    std::vector<RowId> updated;     ///< in ascending order
    std::uint8_t columnClasses = 0; ///< of the updated rows, a union of ColumnClass
    bool rowsInserted = false;
    bool rowsDeleted = false;
    std::vector<RowId> deletedRows; ///< left empty where very many were deleted
    bool engineControl = false;
};

/// The store of items: rows in segments of consecutive ids, with SQLite as the pager behind them ("store" 0),
/// or the same without a file ("store" 1). The file is private to this object, made when the rows first
/// exceed the budget, and removed with it; a second instance of the program has its own. Contexts do all
/// reading and writing. Thread-safe.
class ItemStore {
  public:
    enum class Kind { file = 0, memory = 1 };
    struct Options {
        Kind kind = Kind::memory;
        std::string folder;                     ///< where "tvrn9.db" is made, for Kind::file
        std::size_t residentBudget = 48u << 20; ///< bytes of segments kept in memory, for Kind::file
        std::string vfs;                        ///< name of a SQLite VFS, empty for the default
        /// Told why, once, when the file takes no more and all else stays in memory: nothing is lost by it.
        /// Called under locks, on any thread, so it may only pass it on.
        std::function<void(const std::string& reason)> fileRefused = {};
    };

    /// Where no file can be made the store is one in memory: see openError.
    explicit ItemStore(Options options);
    ~ItemStore();
    ItemStore(const ItemStore&) = delete;
    ItemStore& operator=(const ItemStore&) = delete;

    [[nodiscard]] Kind kind() const;
    /// "SQLite" or "InMemory", as the log names it.
    [[nodiscard]] std::string type() const;
    /// A line for the log: type and place.
    [[nodiscard]] std::string description() const;
    /// Tells this store from every other that the process has had.
    [[nodiscard]] std::uint64_t serial() const;
    /// Why the folder takes no file; absent when all is well.
    [[nodiscard]] const std::optional<std::string>& openError() const;

    /// Goes on without the file. Source items, control row and errors stay; the rows are still to be deleted
    /// and may be unreadable until then. False when the store is in memory already.
    bool migrateToMemory();

    /// Called after every commit on the committing thread, no lock of the store held. One handler.
    void setDidSaveHandler(std::function<void(const StoreChanges&)> handler);

    /// Goes up with each commit that deletes rows.
    [[nodiscard]] std::uint64_t deletionVersion() const;

    /// The rows and all else, for contexts: reached through an `Access` alone, which holds the lock.
    struct Impl;
    class Access;
    [[nodiscard]] Access access() const;

  private:
    std::unique_ptr<Impl> impl;
};

} // namespace tavrin
