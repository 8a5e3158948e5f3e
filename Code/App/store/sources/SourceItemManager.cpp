#include "store/sources/SourceItemManager.h"

#include "platform/files/FileSystem.h"
#include "platform/metadata/FileManager.h"
#include "platform/processes/Parallel.h"
#include "store/contexts/StoreContext.h"
#include "support/application/DebugLog.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

namespace tavrin {

namespace {

SourceItemManager* registeredInstance = nullptr;

bool liesOnRemoteDisk(const std::string& path) {
    std::unique_ptr<OpenFolder> folder;
    VolumeFacts volume;
    return FileSystem::sharedInstance().openFolder(std::string(PathParts(path).folder), folder) == 0 &&
           folder->volume(volume) == 0 && volume.isRemote;
}

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

SourceItemManager::Look SourceItemManager::lookAt(const std::string& path, bool linksAreItems) {
    Look look;
    FileSystem& files = FileSystem::sharedInstance();
    look.exists = files.status(path, look.status) == 0;
    look.kind = look.status.kind;
    if (!look.exists || look.kind != FileStatus::Kind::link || linksAreItems)
        return look;
    FileStatus target;
    look.leadsNowhere = files.followedStatus(path, target) != 0;
    if (!look.leadsNowhere)
        look.kind = target.kind;
    return look;
}

std::vector<SourceItemManager::Look> SourceItemManager::lookAt(std::span<const std::string* const> paths,
                                                               bool linksAreItems,
                                                               const std::function<bool()>& isToStop) {
    constexpr std::size_t worthThreads = 64;
    constexpr std::size_t atOnce =
        64; // of a local disk, where a look takes no longer than a change of threads
    std::vector<Look> looks(paths.size());
    const bool isRemote = paths.size() > 1 && liesOnRemoteDisk(*paths.front());
    const std::size_t share = isRemote ? 1 : atOnce;
    const std::size_t threads = isRemote ? 16 : paths.size() < worthThreads ? 1 : 2;
    inParallel((paths.size() + share - 1) / share, threads, [&](std::size_t number) {
        const std::size_t end = std::min(paths.size(), (number + 1) * share);
        for (std::size_t at = number * share; at < end && !isToStop(); ++at)
            looks[at] = lookAt(*paths[at], linksAreItems);
    });
    return looks;
}

bool SourceItemManager::addSourceItem(const std::string& path, bool linksAreItems) {
    return addSourceItem(path, lookAt(path, linksAreItems));
}

bool SourceItemManager::addSourceItem(const std::string& path, const Look& look) {
    debugLog("addSourceItem: {}", path);
    if (!look.exists || look.leadsNowhere)
        return false;
    const bool isDirectory = look.kind == FileStatus::Kind::folder;
    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    if (context.hasSourceItem(path))
        return false;
    if (isDirectory && context.hasSourceItemBelow(path == "/" ? "" : path))
        return false;
    insert(context, path, isDirectory, look.status);
    return true;
}

bool SourceItemManager::addNestedItem(const std::string& path, const Look& look) {
    if (!look.exists)
        return false;
    StoreContext& context = mainContext();
    std::scoped_lock lock(context.mutex());
    if (!context.hasSourceItem(path))
        insert(context, path, look.kind == FileStatus::Kind::folder, look.status);
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
