#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/AddFileSortingDataStage.h"
#include "engine/CleanUpStages.h"
#include "engine/ComputeProvisionalNamesStage.h"
#include "engine/EngineHost.h"
#include "engine/PerformRenameStage.h"
#include "engine/PrepareForRenamingStage.h"
#include "engine/ProcessingPipeline.h"
#include "engine/ReadItemsIntoDatabaseStage.h"
#include "engine/RenameEngine.h"
#include "engine/ResolveFileNameConflictsStage.h"
#include "engine/SaveAsFileListStage.h"

namespace tavrin {

std::unique_ptr<ProcessingPipeline> RenameEngine::createPreviewPipelineWith(ProgressInfo* progress) {
    auto pipeline = std::make_unique<ProcessingPipeline>(*this);
    pipeline->setProgressInfo(progress);
    pipeline->addStage(std::make_unique<CleanUpProcessingErrorsStage>(*this));
    pipeline->addStage(std::make_unique<ReadItemsIntoDatabaseStage>(*this));
    pipeline->addStage(std::make_unique<AddFileSortingDataStage>(*this));
    pipeline->addStage(std::make_unique<ComputeProvisionalNamesStage>(*this));
    if (application.globalSettings().shouldPreviewConflictResolution())
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
