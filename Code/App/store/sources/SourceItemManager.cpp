#include "store/sources/SourceItemManager.h"

#include "platform/files/FileSystem.h"
#include "platform/metadata/FileManager.h"
#include "store/contexts/StoreContext.h"
#include "support/application/DebugLog.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

namespace tavrin {

namespace {

SourceItemManager* registeredInstance = nullptr;

} // namespace

SourceItemManager::SourceItemManager(std::function<StoreContext&()> newMainContext)
    : mainContext(std::move(newMainContext)) {
    registeredInstance = this;
}

SourceItemManager::~SourceItemManager() {
    if (registeredInstance == this)
        registeredInstance = nullptr;
}

SourceItemManager& SourceItemManager::sharedInstance() {
    if (registeredInstance == nullptr)
        throw std::logic_error("no SourceItemManager is registered");
    return *registeredInstance;
}

bool SourceItemManager::addSourceItem(const std::string& path, bool linksAreItems) {
    debugLog("addSourceItem: {}", path);
    FileStatus status;
    FileSystem& files = FileSystem::sharedInstance();
    if (files.status(path, status) != 0)
        return false;
    FileStatus target = status;
    if (status.kind == FileStatus::Kind::link && !linksAreItems && files.followedStatus(path, target) != 0)
        return false;
    const bool isDirectory = target.kind == FileStatus::Kind::folder;

    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    if (context.hasSourceItem(path))
        return false;
    if (isDirectory && context.hasSourceItemBelow(path == "/" ? "" : path))
        return false;
    insert(context, path, isDirectory, status);
    return true;
}

bool SourceItemManager::addNestedItem(const std::string& path, bool linksAreItems) {
    FileStatus status;
    FileSystem& files = FileSystem::sharedInstance();
    if (files.status(path, status) != 0)
        return false;
    FileStatus::Kind kind = status.kind;
    FileStatus target;
    if (kind == FileStatus::Kind::link && !linksAreItems && files.followedStatus(path, target) == 0)
        kind = target.kind;

    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    if (!context.hasSourceItem(path))
        insert(context, path, kind == FileStatus::Kind::folder, status);
    return true;
}

void SourceItemManager::insert(StoreContext& context, const std::string& path, bool isFolder,
                               const FileStatus& look) {
    context.insertSourceItem(path, isFolder && !FileManager::instance().isBundle(path),
                             keepsLooks ? looks.add(look) : 0);
    context.commit();
}

SourceLooks SourceItemManager::takeLooks() {
    std::scoped_lock lock(mainContext().mutex());
    return looks.take();
}

void SourceItemManager::removeItem(const std::string& path) {
    debugLog("removeItem: {}", path);
    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    if (!context.hasSourceItem(path)) {
        debugLog("could not find the source item!!");
        return;
    }
    context.deleteSourceItem(path);
    deleteRowsOf(path, context);
    context.commit();
}

void SourceItemManager::deleteRowsOf(const std::string& path, StoreContext& context) {
    const RowId row = context.fileWithPath(path);
    if (row == noRow)
        return; // no preview has read it yet
    const RowId parent = context.row(row).parent;
    const bool isOnlyChild = parent != noRow && context.childCount(parent) == 1 &&
                             context.row(parent).entity == NodeEntity::ghostNode;
    context.deleteRow(isOnlyChild ? parent : row);
}

bool SourceItemManager::changeTo(const std::string& oldPath, const std::string& newPath) {
    debugLog("change: {} to: {}", oldPath, newPath);
    removeItem(oldPath);
    addSourceItem(newPath);
    return true;
}

bool SourceItemManager::checkPathValidity(const std::string& folder) {
    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    for (std::string path = folder; !path.empty(); path = PathParts(std::string(path)).folder) {
        if (context.hasSourceItem(path))
            return false;
        if (path == "/")
            break;
    }
    return true;
}

bool SourceItemManager::isEmpty() {
    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    return context.sourceItemCount() == 0;
}

void SourceItemManager::resetCache() {
    constexpr std::size_t itemsAtOnce = 2000; // so that nobody waits long for the context
    StoreContext& context = mainContext();
    std::unique_lock lock(context.mutex());
    const std::vector<SourceItem> items = context.sourceItems();
    for (std::size_t next = 0; next < items.size();) {
        for (const std::size_t end = std::min(items.size(), next + itemsAtOnce); next < end; ++next)
            context.setSourceItemRead(items[next].path, false, false);
        context.commit();
        lock.unlock();
        lock.lock();
    }
}

} // namespace tavrin
