#pragma once

#include "store/sources/SourceLooks.h"

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tavrin {

class StoreContext;

/// The list of paths that the user added, kept free of items inside other items. All operations work on the
/// main context, whatever thread calls them, under its lock. Paths are absolute and in bytes.
class SourceItemManager {
  public:
    /// `mainContext` is asked for at each call, since clearing the list makes a new one.
    explicit SourceItemManager(std::function<StoreContext&()> mainContext);
    ~SourceItemManager();

    /// The instance that the application made (registered by the constructor, withdrawn by the destructor).
    static SourceItemManager& sharedInstance();

    /// What is seen of an item before it is added.
    struct Look {
        bool exists = false;
        bool leadsNowhere = false;                       ///< a link that is followed
        FileStatus status;                               ///< its own
        FileStatus::Kind kind = FileStatus::Kind::other; ///< that of what a followed link leads to
    };
    /// A link is followed, unless links are items. Any thread.
    [[nodiscard]] static Look lookAt(const std::string& path, bool linksAreItems);
    /// At many side by side, above all on a remote disk; waits for all that have begun when `isToStop`, which
    /// is asked on any thread, says so.
    [[nodiscard]] static std::vector<Look> lookAt(std::span<const std::string* const> paths,
                                                  bool linksAreItems, const std::function<bool()>& isToStop);

    /// False when nothing exists at the path, when it is on the list already, or when it is a folder that
    /// holds something on the list. A link is followed, unless links are items.
    bool addSourceItem(const std::string& path, bool linksAreItems = false);
    bool addSourceItem(const std::string& path, const Look& look);
    /// Adds what may lie inside another item, or hold others. False when nothing exists at the path; a link
    /// does, wherever it leads. What is on the list already stays there once.
    bool addNestedItem(const std::string& path, const Look& look);
    void removeItem(const std::string& path);
    /// Deletes the row of a path on the list with all below it, and its folder's where it lies there alone.
    static void deleteRowsOf(const std::string& path, StoreContext& context);
    bool changeTo(const std::string& oldPath, const std::string& newPath);
    /// Whether something may be added in this folder: false when it or a folder above it is on the list.
    bool checkPathValidity(const std::string& folder);
    bool isEmpty();
    /// From now on what is seen of an item when it is added is kept for the reading, which must follow soon.
    void keepLooks() { keepsLooks = true; }
    /// Those of the items that were added since the last time.
    SourceLooks takeLooks();
    /// Marks all items unread.
    void resetCache();

  private:
    /// `look` is the item's own status, that of a link where it is one.
    void insert(StoreContext& context, const std::string& path, bool isFolder, const FileStatus& look);

    std::function<StoreContext&()> mainContext;
    bool keepsLooks = false; ///< fixed before the first item
    SourceLooks looks;       ///< under the main context's lock
};

} // namespace tavrin
