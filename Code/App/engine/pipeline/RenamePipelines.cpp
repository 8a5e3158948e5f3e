#include "engine/naming/ComputeProvisionalNamesStage.h"
#include "engine/naming/ResolveFileNameConflictsStage.h"
#include "engine/naming/SaveAsFileListStage.h"
#include "engine/pipeline/ProcessingPipeline.h"
#include "engine/pipeline/RenameEngine.h"
#include "engine/planning/PrepareForRenamingStage.h"
#include "engine/reading/AddFileSortingDataStage.h"
#include "engine/reading/CleanUpStages.h"
#include "engine/reading/ReadItemsIntoDatabaseStage.h"
#include "engine/renaming/PerformRenameStage.h"

namespace tavrin {

std::unique_ptr<ProcessingPipeline> RenameEngine::createPreviewPipelineWith(ProgressInfo* progress) {
    auto pipeline = std::make_unique<ProcessingPipeline>(*this);
    pipeline->setProgressInfo(progress);
    pipeline->addStage(std::make_unique<CleanUpProcessingErrorsStage>(*this));
    pipeline->addStage(std::make_unique<ReadItemsIntoDatabaseStage>(*this));
    pipeline->addStage(std::make_unique<AddFileSortingDataStage>(*this));
    pipeline->addStage(std::make_unique<ComputeProvisionalNamesStage>(*this));
    if (pipeline->settingsOfRun().shouldPreviewConflictResolution)
        pipeline->addStage(std::make_unique<ResolveFileNameConflictsStage>(*this));
    return pipeline;
}

std::unique_ptr<ProcessingPipeline> RenameEngine::createRenamingPipeline(ProgressInfo* progress,
                                                                         bool andContinue) {
    auto pipeline = std::make_unique<ProcessingPipeline>(*this);
    pipeline->needRows();
    pipeline->setProgressInfo(progress);
    pipeline->addStage(std::make_unique<CleanUpProcessingErrorsStage>(*this));
    pipeline->addStage(std::make_unique<ResolveFileNameConflictsStage>(*this));
    pipeline->addStage(std::make_unique<PrepareForRenamingStage>(*this));
    pipeline->addStage(std::make_unique<PerformRenameStage>(*this));
    if (andContinue)
        pipeline->addStage(std::make_unique<CleanUpFilesStage>(*this));
    return pipeline;
}

std::unique_ptr<ProcessingPipeline>
RenameEngine::createSaveToFileListPipeline(const FileListArguments& arguments) {
    auto pipeline = std::make_unique<ProcessingPipeline>(*this);
    pipeline->needRows();
    pipeline->addStage(std::make_unique<ResolveFileNameConflictsStage>(*this));
    auto save = std::make_unique<SaveAsFileListStage>(*this);
    save->setShouldIncludeOnlyAffectedFiles(arguments.shouldIncludeOnlyAffectedFiles);
    save->setFormat(arguments.format);
    save->setPath(arguments.path);
    save->setReason(arguments.reason);
    pipeline->addStage(std::move(save));
    return pipeline;
}

} // namespace tavrin
