#include "engine/reading/AddFileSortingDataStage.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "platform/metadata/ExifHelper.h"
#include "platform/metadata/FileManager.h"
#include "store/contexts/StoreContext.h"

namespace tavrin {

namespace {

constexpr std::size_t batchSize = 2000;

} // namespace

std::string AddFileSortingDataStage::stageDescription() const { return "Retrieving sorting information..."; }

bool AddFileSortingDataStage::process() {
    const StageProgress report(progress);
    report.describe("Preparing..");
    report.indeterminate(true);
    report.item(0);
    retrieveEXIFData = settings.shouldRetrieveEXIFInformation;
    sumFolders = settings.shouldCalculateAccurateFolderSize != 0;
    const Predicate unread = Predicate::isFalse(NodeKey::sortingInformationLoaded);
    report.numberOfItems(static_cast<std::int32_t>(context->count(FetchEntity::file, unread)));
    report.indeterminate(false);

    std::int32_t count = 0;
    const FetchRequest request{FetchEntity::file, unread, {}, batchSize};
    for (std::vector<RowId> batch; !(batch = context->fetch(request)).empty();) {
        for (const RowId id : batch) {
            report.describeItem([&] { return "Processing " + context->fullPath(id); });
            addSortingData(id);
            report.item(++count);
        }
        report.describe("Sorting information for {} files was retrieved. Committing..", count);
        saveAndRefaultObjects();
    }
    openFolder.reset();
    return true;
}

void AddFileSortingDataStage::addSortingData(RowId id) {
    const RowId parent = context->row(id).parent;
    const std::string name(context->component(id));
    FileStatus status = statusOf(parent, name);
    const bool isFolder = status.kind == FileStatus::Kind::folder;
    if (isFolder && sumFolders)
        status.size = FileManager::instance().sizeForPath(context->fullPath(id), true);
    double exif = 0.0;
    if (retrieveEXIFData) {
        const bool mayHaveDate =
            status.kind == FileStatus::Kind::file && status.size > 0 && ExifHelper::isImageName(name);
        exif = mayHaveDate ? FileManager::instance().fileEXIFDate(context->fullPath(id))
                           : FileManager::distantPast;
    }
    NodeRow& row = context->change(id);
    row.modDate = status.modificationDate;
    row.crDate = status.creationDate;
    row.exif = exif;
    row.size = status.size;
    row.sortingInformationLoaded = true;
}

FileStatus AddFileSortingDataStage::statusOf(RowId parent, const std::string& name) {
    if (parent != openParent) {
        openParent = parent;
        openFolder.reset();
        if (FileSystem::sharedInstance().openFolder(context->fullPath(parent), openFolder) != 0)
            openFolder.reset();
    }
    FileStatus status;
    if (!openFolder || openFolder->status(name, status) != 0)
        status = {};
    return status;
}

} // namespace tavrin
