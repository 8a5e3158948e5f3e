#include "engine/reading/AddFileSortingDataStage.h"

#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/reading/FolderNotes.h"
#include "engine/reading/SortingValues.h"
#include "platform/metadata/FileManager.h"
#include "store/contexts/StoreContext.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <fmt/core.h>

#include <random>

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
    const SortingValues values(settings);
    if (values.mustSum(status))
        status.size = FileManager::instance().sizeForPath(context->fullPath(id), true);
    engine.folderNotes().noteLocked(id, status.isLocked());
    if (values.mayHaveShootingDate(status, name)) {
        const double taken = FileManager::instance().fileEXIFDate(context->fullPath(id));
        SortingValues::put(context->change(id), status, taken);
    } else {
        values.put(context->change(id), status);
    }
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

PropertyValue AddFileSortingDataStage::getSortingValueForPath(const std::string& path, int andSetting) const {
    const FileManager& files = FileManager::instance();
    const std::u16string name = text::fromBytes(PathParts(path).name);
    switch (andSetting < 0 || andSetting > 12 ? -1 : andSetting / 2) {
    case 0:
        return name;
    case 1:
        return files.fileModificationDate(path).value_or(0.0);
    case 2:
        return files.fileCreationDate(path).value_or(0.0);
    case 3:
        return text::fromUtf8(fmt::format("{:016}", files.sizeForPath(path, sumFolders)));
    case 4:
        return retrieveEXIFData ? files.fileEXIFDate(path) : 0.0;
    case 5:
        return KQStringUtilities::expandNumberBlocks(name);
    case 6:
        return text::fromUtf8(createUUID());
    default:
        return u"cheers";
    }
}

std::string AddFileSortingDataStage::createUUID() {
    std::random_device random;
    const auto part = [&random](unsigned bits) { return random() & ((std::uint64_t{1} << bits) - 1); };
    return fmt::format("{:08X}-{:04X}-4{:03X}-{:04X}-{:08X}{:04X}", part(32), part(16), part(12),
                       part(14) | 0x8000, part(32), part(16));
}

std::string AddFileSortingDataStage::formatDate(double date) { return fmt::format("{:020.4f}", date); }

} // namespace tavrin
