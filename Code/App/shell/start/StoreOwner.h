#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tavrin {

class ItemStore;
class StoreContext;
struct StoreChanges;
class UserDefaults;

/// Owns the store of items and its main context: makes them when first asked for, keeps the main context
/// current, and drops both when the list is cleared. Safe from any thread unless a call says otherwise.
class StoreOwner {
  public:
    struct Options {
        std::string dataFolder; ///< where the store's file is made
        std::string vfs;        ///< name of a SQLite VFS, empty for the default
        std::size_t residentBudget = 48u << 20;
    };
    /// `postNotice` is called on any thread, under locks. While `isBusyMigrating` says so, nothing is merged.
    StoreOwner(UserDefaults& defaults, Options options,
               std::function<void(const std::string& message)> postNotice,
               std::function<bool()> isBusyMigrating);
    ~StoreOwner();
    StoreOwner(const StoreOwner&) = delete;
    StoreOwner& operator=(const StoreOwner&) = delete;

    /// Never null. Where no file can be made it is in memory, and the user is told.
    ItemStore* persistentStoreCoordinator();
    StoreContext& managedObjectContext();

    /// Forgets store and main context; the next demand makes new ones. A worker may still hold the old ones,
    /// so they stay alive until releaseRetired.
    void drop();
    /// Frees what has been dropped. Only while no worker is at work.
    void releaseRetired();
    /// Goes up with each drop, so that lists of rows of a former store are known as such.
    [[nodiscard]] std::uint64_t generation() const;

  private:
    struct Generation;

    Generation& currentGeneration();
    std::unique_ptr<Generation> makeGeneration();
    void tellThatFileRefused(const std::string& reason) const;
    static void didSave(Generation& generation, const StoreChanges& changes);

    UserDefaults& defaults;
    const Options options;
    std::function<void(const std::string&)> postNotice;
    std::function<bool()> isBusyMigrating;

    mutable std::recursive_mutex persistentStoreCreationToken; ///< guards what follows
    std::unique_ptr<Generation> current;
    std::vector<std::unique_ptr<Generation>> retired;
    std::uint64_t drops = 0;

    std::recursive_mutex contextAccessToken; ///< one thread at a time makes the main context; taken first
};

} // namespace tavrin
