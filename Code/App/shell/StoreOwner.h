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
    /// `presentError` may be called on any thread. While `isBusyMigrating` says so, nothing is merged.
    StoreOwner(UserDefaults& defaults, Options options,
               std::function<void(const std::string& message)> presentError,
               std::function<bool()> isBusyMigrating);
    ~StoreOwner();
    StoreOwner(const StoreOwner&) = delete;
    StoreOwner& operator=(const StoreOwner&) = delete;

    /// Never null. A store whose file could not be made says so, and moves into memory when the main context
    /// is first asked for.
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
    void moveIntoMemory(Generation& generation);
    static void didSave(Generation& generation, const StoreChanges& changes);

    UserDefaults& defaults;
    const Options options;
    std::function<void(const std::string&)> presentError;
    std::function<bool()> isBusyMigrating;

    mutable std::recursive_mutex persistentStoreCreationToken; ///< guards what follows
    std::unique_ptr<Generation> current;
    std::vector<std::unique_ptr<Generation>> retired;
    std::uint64_t drops = 0;
    bool leftoversAreSwept = false;

    std::recursive_mutex contextAccessToken; ///< one thread at a time makes the main context; taken first
};

} // namespace tavrin
