#include "engine/reading/CleanUpStages.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "platform/files/FileSystem.h"
#include "platform/files/FolderEntries.h"
#include "platform/processes/RunLoop.h"
#include "store/contexts/StoreContext.h"
#include "store/sources/SourceItemManager.h"

#include <cerrno>
#include <memory>
#include <string_view>
#include <unordered_set>

namespace tavrin {

namespace {

constexpr std::size_t batchSize = 2000;

} // namespace

bool CleanUpStage::process() {
    const StageProgress report(progress);
    report.describe("Preparing..");
    report.indeterminate(true);
    std::size_t count = 0;
    while (const std::size_t deleted = deleteRows(batchSize)) {
        count += deleted;
        report.item(static_cast<std::int32_t>(count));
        if (progress)
            report.describe(batchText(count));
        saveAndRefaultObjects();
    }
    return true;
}

std::string CleanUpProcessingErrorsStage::stageDescription() const {
    return "Cleaning up stale error messages...";
}

std::size_t CleanUpProcessingErrorsStage::deleteRows(std::size_t limit) {
    return context->deleteProcessingErrors(limit);
}

std::string CleanUpProcessingErrorsStage::batchText(std::size_t count) const {
    return fmt::format("{} errors cleaned up. Committing..", count);
}

std::string DropGoneItemsStage::stageDescription() const { return "Looking for items that are gone..."; }

bool DropGoneItemsStage::process() {
    count = 0;
    gone.clear();
    for (const RowId folder :
         context->fetch({FetchEntity::node, Predicate::isTrue(NodeKey::treatAsFolder), {}, 0}))
        lookInto(folder);
    for (const std::string& path : gone)
        SourceItemManager::sharedInstance().removeItem(path);
    if (tells && count > 0)
        engine.host().runLoop().post([&host = engine.host(), number = count] { host.tellGone(number); });
    return true;
}

/// One listing where it may be had, so that a long list takes no call for each item.
void DropGoneItemsStage::lookInto(RowId folder) {
    const std::vector<RowId> children = context->children(folder);
    if (children.empty())
        return;
    FileSystem& disk = FileSystem::sharedInstance();
    std::unique_ptr<OpenFolder> place;
    FolderEntries listing;
    const int error = disk.openFolder(context->fullPath(folder), place);
    const bool isListed = error == 0 && place->entries(listing) == 0;
    std::unordered_set<std::string_view> names;
    for (const FolderEntry entry : listing)
        names.insert(entry.name);
    for (const RowId child : children) {
        if (context->row(child).entity != NodeEntity::file ||
            (isListed && names.contains(context->component(child))))
            continue;
        // Also what a folder that ignores case lists under another spelling.
        FileStatus status;
        const std::string path = context->fullPath(child);
        const int missing = disk.status(path, status);
        if (missing != ENOENT && missing != ENOTDIR)
            continue;
        ++count;
        if (context->row(child).root)
            gone.push_back(path);
    }
}

std::string CleanUpFilesStage::stageDescription() const { return "Cleaning up old file data..."; }

std::size_t CleanUpFilesStage::deleteRows(std::size_t limit) { return context->deleteNodes(limit); }

std::string CleanUpFilesStage::batchText(std::size_t count) const {
    return fmt::format("{} files cleaned up. Committing..", count);
}

} // namespace tavrin
