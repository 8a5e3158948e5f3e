#include "engine/ReadItemsIntoDatabaseStage.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/EngineHost.h"
#include "engine/FolderWalk.h"
#include "engine/PathParts.h"
#include "engine/RenameEngine.h"
#include "engine/StageProgress.h"
#include "platform/FileManager.h"
#include "store/SourceItemManager.h"
#include "store/StoreContext.h"
#include "support/DebugLog.h"

namespace tavrin {

namespace {

constexpr int rowsPerCommit = 5000;

} // namespace

std::string ReadItemsIntoDatabaseStage::stageDescription() const { return "Adding items to database..."; }

bool ReadItemsIntoDatabaseStage::process() {
    const StageProgress report(progress);
    rowsMade = 0;
    lastParentFolder = noRow;
    lastParentFolderPath.clear();
    report.describe("start processing..");
    report.indeterminate(true);
    if (progress)
        progress->signalQuickSwitchToLongProcessingMode();
    context->changeEngineControl().needToRedoConflictResolution = true;
    const std::vector<SourceItem> items = context->sourceItems();
    if (items.empty()) {
        debugLog("No source items yet, interrupting pipeline");
        return false;
    }
    shouldProcessSubfolders = engine.host().globalSettings().shouldProcessSubfolders() != 0;
    for (const SourceItem& item : items) {
        report.describeItem([&] { return "Processing item: " + item.path; });
        readSourceItem(item);
    }
    folder.reset();
    if (rowsMade > 0)
        forgetItemsRemovedSince(items);
    engine.computeTotalNumberOfFilesForContext(*context);
    engine.computeTotalNumberOfFilesSelectedOrNotForContext(*context);
    return true;
}

void ReadItemsIntoDatabaseStage::readSourceItem(const SourceItem& item) {
    const bool mayHaveContents = item.treatAsFolder && shouldProcessSubfolders && !item.readInSubfolders;
    if (item.readInRoot && !mayHaveContents)
        return; // nothing would come of looking at the disk
    const Kind kind = kindOf(item.path);
    if (!kind.isFileOrBundle) {
        readFolder(item, kind);
    } else if (!item.readInRoot && !kind.isInvisible) {
        createRootItem(item.path, false, kind.seen);
        context->setSourceItemRead(item.path, true, item.readInSubfolders);
    }
}

/// What left the list while it was read could not take along rows that were not in the store yet.
void ReadItemsIntoDatabaseStage::forgetItemsRemovedSince(const std::vector<SourceItem>& items) {
    const std::vector<SourceItem> left = context->sourceItems();
    std::vector<std::string> gone;
    auto next = left.begin(); // both lists are in the order added
    for (const SourceItem& item : items) {
        if (next != left.end() && next->path == item.path)
            ++next;
        else
            gone.push_back(item.path);
    }
    if (gone.empty())
        return;
    saveAndRefaultObjects();
    for (const std::string& path : gone) {
        SourceItemManager::deleteRowsOf(path, *context);
        context->setSourceItemRead(path, false, false); // where it is on the list again
    }
    saveAndRefaultObjects();
}

void ReadItemsIntoDatabaseStage::readFolder(const SourceItem& item, const Kind& kind) {
    const bool isNew = !kind.isInvisible && !item.readInRoot;
    const bool mustWalk = shouldProcessSubfolders && !item.readInSubfolders;
    if (isNew)
        createRootItem(item.path, true, kind.seen);
    if (isNew || mustWalk)
        context->setSourceItemRead(item.path, isNew || item.readInRoot, mustWalk || item.readInSubfolders);
    if (mustWalk)
        FolderWalk(*this, kind.isInvisible).run(item.path);
}

/// One call per item: the folder is held open for its neighbours on the list.
ReadItemsIntoDatabaseStage::Kind ReadItemsIntoDatabaseStage::kindOf(const std::string& path) {
    const PathParts parts(path);
    openFolderAt(parts.folder);
    FileStatus status;
    const std::string name(parts.name.empty() ? "." : parts.name);
    if (!folder || folder->status(name, status) != 0)
        return {}; // gone since it was added: goes through as a file, and fails when it is to be renamed
    Kind kind;
    kind.seen = {status.identity, status.kind};
    kind.isInvisible = name.front() == '.' || hiddenNames.contains(name);
    if (parts.name.empty())
        kind.isInvisible = true; // the root has no name that could be changed
    if (status.kind == FileStatus::Kind::link &&
        FileSystem::sharedInstance().followedStatus(path, status) != 0)
        return kind;
    kind.isFileOrBundle =
        status.kind != FileStatus::Kind::folder || FileManager::instance().isBundleFolder(path);
    return kind;
}

void ReadItemsIntoDatabaseStage::openFolderAt(std::string_view path) {
    if (folder && openPath == path)
        return;
    openPath = path;
    FileStatus status;
    if (FileSystem::sharedInstance().openFolder(openPath, folder) != 0 || folder->status(".", status) != 0)
        folder.reset();
    folderIdentity = status.identity;
    hiddenNames = folder ? HiddenNames(openPath) : HiddenNames();
}

RowId ReadItemsIntoDatabaseStage::rowForFolder(std::string_view path, const FileIdentity& identity) {
    const RowId row = context->nodeWithPath(path);
    return row != noRow ? row : context->insertGhostNode(path, identity);
}

RowId ReadItemsIntoDatabaseStage::createRootItem(const std::string& path, bool isFolder,
                                                 const SeenItem& seen) {
    const PathParts parts(path);
    if (lastParentFolder == noRow || lastParentFolderPath != parts.folder) {
        lastParentFolder = rowForFolder(parts.folder, folderIdentity);
        lastParentFolderPath = parts.folder;
    }
    return createOneFile(lastParentFolder, parts.folder, parts.name, true, isFolder, seen);
}

RowId ReadItemsIntoDatabaseStage::createOneFile(RowId parent, std::string_view folderPath,
                                                std::string_view name, bool root, bool isFolder,
                                                const SeenItem& seen) {
    const StageProgress report(progress);
    report.describeItem([&] { return "Processing: " + joinedPath(folderPath, name); });
    const RowId id = context->insertFile(parent, name, root, isFolder, engine.nextManualOrder(), seen);
    if (++rowsMade % rowsPerCommit == 0) {
        report.describe("{} files read. Committing..", rowsMade);
        saveAndRefaultObjects();
    }
    return id;
}

} // namespace tavrin
