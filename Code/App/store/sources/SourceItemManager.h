#pragma once

#include "store/sources/SourceLooks.h"

#include <functional>
#include <string>

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

    /// False when nothing exists at the path, when it is on the list already, or when it is a folder that
    /// holds something on the list. A link is followed, unless links are items.
    bool addSourceItem(const std::string& path, bool linksAreItems = false);
    /// Adds what may lie inside another item, or hold others. False when nothing exists at the path; a link
    /// does, wherever it leads. What is on the list already stays there once.
    bool addNestedItem(const std::string& path, bool linksAreItems);
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
