#include "engine/reading/CleanUpStages.h"

#include "engine/pipeline/ProgressInfo.h"
#include "store/contexts/StoreContext.h"

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

std::string CleanUpFilesStage::stageDescription() const { return "Cleaning up old file data..."; }

std::size_t CleanUpFilesStage::deleteRows(std::size_t limit) { return context->deleteNodes(limit); }

std::string CleanUpFilesStage::batchText(std::size_t count) const {
    return fmt::format("{} files cleaned up. Committing..", count);
}

} // namespace tavrin
