#include "engine/reading/RowValueLoader.h"

#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/reading/SortingValues.h"
#include "platform/metadata/FileManager.h"
#include "platform/processes/Parallel.h"
#include "store/contexts/StoreContext.h"

namespace tavrin {

namespace {

/// A server answers them side by side; what they wait for is the way there.
constexpr std::size_t looksAtATime = 16;
constexpr std::size_t mostOfAShare = 25;

} // namespace

RowValueLoader::RowValueLoader(EngineState& engine, StoreContext& rows, const Settings& ofRun,
                               ProgressInfo* info)
    : context(rows), notes(engine.folderNotes()), settings(ofRun), progress(info) {}

std::size_t RowValueLoader::load(std::span<const RowId> rows, RowValues needed) {
    const StageProgress report(progress);
    std::vector<RowId> lacking;
    std::vector<RowId> unseen;
    for (const RowId id : rows) {
        const RowValues loaded = context.row(id).loaded;
        if (!holds(loaded, needed))
            lacking.push_back(id);
        if (!holds(loaded, RowValues::ofStatus))
            unseen.push_back(id);
    }
    const std::vector<FileStatus> seen = look(unseen);
    auto next = seen.begin();
    for (const RowId id : lacking) {
        report.describeItem([&] { return "Processing " + context.fullPath(id); });
        if (!holds(context.row(id).loaded, RowValues::ofStatus)) {
            const std::string name(context.component(id));
            notes.noteLocked(id, next->isLocked());
            SortingValues(settings).put(context.change(id), *next++, name);
        }
        if (const RowValues missing = needed - context.row(id).loaded; missing != RowValues::none)
            loadFromItem(id, missing);
    }
    return lacking.size();
}

void RowValueLoader::loadFromItem(RowId id, RowValues missing) {
    const FileManager& files = FileManager::instance();
    const std::string path = context.fullPath(id);
    NodeRow& row = context.change(id);
    if (holds(missing, RowValues::folderSize))
        row.size = files.sizeForPath(path, true);
    if (holds(missing, RowValues::shootingDate))
        row.exif = files.fileEXIFDate(path);
    row.loaded |= missing;
}

std::vector<FileStatus> RowValueLoader::look(const std::vector<RowId>& items) {
    if (items.empty())
        return {};
    openFolderOf(context.row(items.front()).parent);
    VolumeFacts volume;
    if (openFolder && openFolder->volume(volume) == 0 && volume.isRemote)
        return lookInParallel(items);
    std::vector<FileStatus> seen;
    seen.reserve(items.size());
    for (const RowId id : items)
        seen.push_back(statusOf(context.row(id).parent, std::string(context.component(id))));
    return seen;
}

std::vector<FileStatus> RowValueLoader::lookInParallel(const std::vector<RowId>& items) const {
    struct Share {
        std::string folder;
        std::size_t first;
        std::vector<std::string> names = {};
    };
    std::vector<Share> shares;
    RowId lastParent = noRow;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const RowId parent = context.row(items[i]).parent;
        if (parent != lastParent || shares.back().names.size() == mostOfAShare)
            shares.push_back({context.fullPath(parent), i});
        lastParent = parent;
        shares.back().names.emplace_back(context.component(items[i]));
    }
    std::vector<FileStatus> seen(items.size());
    inParallel(shares.size(), looksAtATime, [&](std::size_t number) {
        const Share& share = shares[number];
        std::unique_ptr<OpenFolder> folder;
        if (FileSystem::sharedInstance().openFolder(share.folder, folder) != 0)
            return;
        for (std::size_t i = 0; i < share.names.size(); ++i)
            if (FileStatus status; folder->status(share.names[i], status) == 0)
                seen[share.first + i] = status;
    });
    return seen;
}

void RowValueLoader::openFolderOf(RowId parent) {
    if (parent == openParent)
        return;
    openParent = parent;
    openFolder.reset();
    if (FileSystem::sharedInstance().openFolder(context.fullPath(parent), openFolder) != 0)
        openFolder.reset();
}

FileStatus RowValueLoader::statusOf(RowId parent, const std::string& name) {
    openFolderOf(parent);
    FileStatus status;
    if (!openFolder || openFolder->status(name, status) != 0)
        status = {};
    return status;
}

} // namespace tavrin
