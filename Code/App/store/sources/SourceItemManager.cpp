#include "store/sources/SourceItemManager.h"

#include "platform/files/FileSystem.h"
#include "platform/metadata/FileManager.h"
#include "store/contexts/StoreContext.h"
#include "support/application/DebugLog.h"
#include "support/text/PathParts.h"

#include <mutex>
#include <stdexcept>
#include <utility>

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
    if ((linksAreItems ? files.status(path, status) : files.followedStatus(path, status)) != 0)
        return false;
    const bool isDirectory = status.kind == FileStatus::Kind::folder;

    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    if (context.sourceItemWithPath(path))
        return false;
    if (isDirectory && context.hasSourceItemBelow(path == "/" ? "" : path))
        return false;
    insert(context, path, isDirectory);
    return true;
}

bool SourceItemManager::addNestedItem(const std::string& path, bool linksAreItems) {
    FileStatus status;
    FileSystem& files = FileSystem::sharedInstance();
    if (files.status(path, status) != 0)
        return false;
    FileStatus target;
    if (status.kind == FileStatus::Kind::link && !linksAreItems && files.followedStatus(path, target) == 0)
        status = target;

    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    if (!context.sourceItemWithPath(path))
        insert(context, path, status.kind == FileStatus::Kind::folder);
    return true;
}

void SourceItemManager::insert(StoreContext& context, const std::string& path, bool isFolder) {
    context.insertSourceItem(path, isFolder && !FileManager::instance().isBundle(path));
    context.commit();
}

void SourceItemManager::removeItem(const std::string& path) {
    debugLog("removeItem: {}", path);
    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    if (!context.sourceItemWithPath(path)) {
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
        if (context.sourceItemWithPath(path))
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
    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    for (const SourceItem& item : context.sourceItems())
        context.setSourceItemRead(item.path, false, false);
    context.commit();
}

} // namespace tavrin
