#include "engine/reading/AddFileSortingDataStage.h"

#include "actions/CompositeRenameAction.h"
#include "actions/SortBasedAction.h"
#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/reading/RowValueLoader.h"
#include "engine/renaming/RenameEngineUtilities.h"
#include "platform/metadata/FileManager.h"
#include "platform/processes/RunLoop.h"
#include "store/contexts/StoreContext.h"
#include "support/text/KQStringUtilities.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <fmt/core.h>

#include <algorithm>
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
    const RowValues needed = valuesNeeded();
    std::vector<RowId> rows;
    if (needed != RowValues::none)
        rows =
            context->fetch({FetchEntity::file, Predicate::isFalse(NodeKey::sortingInformationLoaded), {}, 0});
    report.numberOfItems(static_cast<std::int32_t>(rows.size()));
    report.indeterminate(false);

    RowValueLoader loader(engine, *context, settings, progress);
    for (std::size_t first = 0; first < rows.size(); first += batchSize) {
        const auto batch = std::span(rows).subspan(first, std::min(batchSize, rows.size() - first));
        const std::size_t loaded = loader.load(batch, needed);
        report.item(static_cast<std::int32_t>(first + batch.size()));
        if (loaded == 0)
            continue;
        report.describe("Sorting information for {} files was retrieved. Committing..", first + batch.size());
        saveAndRefaultObjects();
    }
    return true;
}

RowValues AddFileSortingDataStage::valuesNeeded() const {
    using namespace RenameEngineUtilities;
    // Locked items are foreseen by what was seen of them. Who wants one name is known only later, and looked
    // at then.
    RowValues needed = engine.foreseesProblems(settings) ? RowValues::ofStatus : RowValues::none;
    EngineHost& host = engine.host();
    static_cast<void>(host.runLoop().performAndWait([&] {
        for (const auto& step : host.compositeAction().getActionDictionaryList()) {
            if (step->isActive())
                needed |= step->valuesNeeded();
            // The list is shown in the order of the step in hand, active or not.
            if (const auto* const sorted = dynamic_cast<const SortBasedAction*>(step.get()))
                needed |= valuesFor(sortDescriptorsOf(*sorted));
        }
    }));
    return needed;
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
