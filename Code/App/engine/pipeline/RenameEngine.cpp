#include "engine/pipeline/RenameEngine.h"

#include "engine/history/NamesFromRecordStage.h"
#include "engine/naming/ComputeProvisionalNamesStage.h"
#include "engine/naming/ResolveFileNameConflictsStage.h"
#include "engine/naming/SaveAsFileListStage.h"
#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/ProcessingPipeline.h"
#include "engine/reading/AddFileSortingDataStage.h"
#include "engine/reading/CleanUpStages.h"
#include "engine/reading/ReadItemsIntoDatabaseStage.h"
#include "engine/renaming/HeedProblemsStage.h"
#include "engine/renaming/PerformRenameStage.h"
#include "engine/renaming/PrepareForRenamingStage.h"
#include "platform/processes/RunLoop.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "store/paging/StoreError.h"
#include "store/sources/SourceItemManager.h"
#include "support/application/DebugLog.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace tavrin {

namespace {

/// In bytes; the rows that are made of one take four times as many.
constexpr std::uint64_t longRecord = 16u << 20;

/// The calling thread, as log lines name it.
std::string threadDescription() {
    return fmt::format("<thread {:x}>", std::hash<std::thread::id>()(std::this_thread::get_id()));
}

} // namespace

RenameEngine::RenameEngine(EngineHost& host)
    : EngineState(host),
      // Wakes whoever waits in the run loop for the engine to be idle.
      threads([this] { application.runLoop().post([] {}); }) {}

RenameEngine::~RenameEngine() {
    ending = true;
    stopRequested = true;
    threads.joinAll();
}

bool RenameEngine::isBusy() const { return threads.areBusy(); }

void RenameEngine::processPreviewPipeline(ProgressInfo& progress) {
    threads.detach([this, &progress, turn = std::make_shared<EngineTurns::Turn>(engineLock)] {
        internalProcessPreviewThread(progress, *turn);
    });
}

void RenameEngine::processRenamingPipelineThenClearList(ProgressInfo& progress) {
    startRenaming(progress, false, [](EngineHost& host) {
        host.showCompletionDialog();
        host.clearList();
    });
}

void RenameEngine::processRenamingPipelineThenContinue(ProgressInfo& progress) {
    startRenaming(progress, true, [](EngineHost& host) {
        host.reloadPreview();
        host.showCompletionDialog();
    });
}

void RenameEngine::processRenamingPipelineThenQuit(ProgressInfo& progress) {
    startRenaming(progress, false, [](EngineHost& host) {
        host.showCompletionDialog();
        host.terminate();
    });
}

void RenameEngine::startRenaming(ProgressInfo& progress, bool andContinue,
                                 std::function<void(EngineHost&)> completion) {
    stopRequested = false;
    onMainThread([](EngineHost& host) { host.startProgressWindow(); });
    threads.detach([this, &progress, andContinue, completion = std::move(completion),
                    turn = std::make_shared<EngineTurns::Turn>(engineLock)] {
        const EngineTurns::Held lock(*turn);
        if (ending)
            return;
        static_cast<void>(createRenamingPipeline(&progress, andContinue)->process());
        if (andContinue)
            SourceItemManager::sharedInstance().resetCache();
        onMainThread([](EngineHost& host) { host.stopProgressWindow(); });
        onMainThread(completion);
    });
}

void RenameEngine::processLook() {
    threads.detach([this, turn = std::make_shared<EngineTurns::Turn>(engineLock)] {
        const EngineTurns::Held lock(*turn);
        if (ending)
            return;
        ProcessingPipeline pipeline(*this);
        pipeline.addStage(std::make_unique<ResolveFileNameConflictsStage>(
            *this, ResolveFileNameConflictsStage::Task::lookAnew));
        if (pipeline.process())
            refreshList();
    });
}

void RenameEngine::processListRefresh() {
    threads.detach([this] {
        if (!ending)
            refreshList();
    });
}

void RenameEngine::refreshList() {
    std::optional<FetchRequest> list;
    onMainThread([&](EngineHost& host) { list = host.shownList(); });
    ItemStore* const store = list ? application.persistentStoreCoordinator() : nullptr;
    std::optional<RowFolders> folders;
    try {
        if (store != nullptr) {
            StoreContext context(*store, StoreContext::MergePolicy::storeWins);
            static_cast<void>(context.fetch(*list));
            folders = context.foldersOf({list->entity, list->predicate, {}});
        }
    } catch (const StoreError& error) {
        debugLog("could not sort the list ahead: {}", error.what());
    }
    onMainThread([&](EngineHost& host) {
        if (folders)
            host.setListFolders(*folders);
        host.refreshPreview();
    });
}

void RenameEngine::workOnRows(RowWork work, std::shared_ptr<EngineTurns::Turn> turn) {
    threads.detach([this, work = std::move(work), turn = std::move(turn)] {
        const auto held = turn ? std::make_unique<EngineTurns::Held>(*turn) : nullptr;
        ItemStore* const store = ending ? nullptr : application.persistentStoreCoordinator();
        if (store == nullptr)
            return;
        StoreContext context(*store, StoreContext::MergePolicy::contextWins);
        if (const std::function<void()> answer = work(context); answer && !ending)
            onMainThread([&](EngineHost&) { answer(); });
    });
}

void RenameEngine::readHistory(std::function<std::function<void()>(const RunHistory&)> look) {
    threads.detach([this, look = std::move(look)] {
        if (const std::function<void()> answer = look(RunHistory(history.folder)); answer && !ending)
            onMainThread([&](EngineHost&) { answer(); });
    });
}

void RenameEngine::processTakeBack(ProgressInfo& progress, TakeBackRequest request,
                                   std::function<void(EngineHost&, const TakeBackResult&)> completion) {
    stopRequested = false;
    const bool showsRun = request.isOnShow || request.extent != TakeBackRequest::Extent::look;
    if (showsRun)
        onMainThread([](EngineHost& host) { host.startProgressWindow(); });
    threads.detach([this, &progress, request = std::move(request), completion = std::move(completion),
                    showsRun, turn = std::make_shared<EngineTurns::Turn>(engineLock)] {
        const EngineTurns::Held lock(*turn);
        if (ending)
            return;
        const TakeBackResult result = takeBack(progress, request);
        if (showsRun)
            onMainThread([](EngineHost& host) { host.stopProgressWindow(); });
        onMainThread([&](EngineHost& host) { completion(host, result); });
    });
}

TakeBackResult RenameEngine::takeBack(ProgressInfo& progress, const TakeBackRequest& request) {
    TakeBackResult result;
    result.chosen = request.chosen;
    ItemStore::Options storeOptions;
    if (request.chosen.run.size >= longRecord) {
        storeOptions.kind = ItemStore::Kind::file;
        storeOptions.folder = historyPlace().folder;
    }
    result.store = std::make_shared<ItemStore>(std::move(storeOptions));
    const auto purpose = std::make_shared<RunPurpose>();
    purpose->what = request.chosen.what;
    purpose->of = request.chosen.run.name;
    purpose->isStrict = true;
    purpose->asks = request.asks;
    purpose->isOnList = request.isOnShow;
    ProcessingPipeline pipeline(*this);
    pipeline.setProgressInfo(&progress);
    pipeline.setStore(*result.store);
    pipeline.addStage(std::make_unique<NamesFromRecordStage>(*this, request, purpose));
    pipeline.addStage(std::make_unique<PrepareForRenamingStage>(*this));
    pipeline.addStage(std::make_unique<PerformRenameStage>(*this, purpose));
    result.wasDone = pipeline.process();
    StoreContext context(*result.store, StoreContext::MergePolicy::storeWins);
    result.planned =
        static_cast<std::int32_t>(context.count(FetchEntity::file, Predicate::isTrue(NodeKey::diff)));
    result.changed = std::max(0, context.engineControl().numberOfActuallyRenamedFiles);
    result.failed = purpose->failedBefore + context.engineControl().numberOfItemsNotRenamed;
    result.errors = context.processingErrors();
    return result;
}

void RenameEngine::processFileListPipeline(ProgressInfo&, int format, bool shouldIncludeOnlyAffectedFiles,
                                           const std::string& path) {
    onMainThread([](EngineHost& host) { host.startProgressWindow(); });
    threads.detach([this, arguments = FileListArguments{format, shouldIncludeOnlyAffectedFiles, path},
                    turn = std::make_shared<EngineTurns::Turn>(engineLock)] {
        const EngineTurns::Held lock(*turn);
        if (ending)
            return;
        std::string reason;
        FileListArguments ownArguments = arguments;
        ownArguments.reason = &reason;
        if (!createSaveToFileListPipeline(ownArguments)->process() && reason.empty())
            reason = "The list of items could not be read.";
        onMainThread([](EngineHost& host) { host.stopProgressWindow(); });
        refreshList();
        onMainThread([&](EngineHost& host) {
            if (reason.empty())
                host.showFileListSavingCompletionDialog(arguments.format);
            else
                host.showFileListNotSaved(arguments.path, reason);
        });
    });
}

/// The rows go first: reading an item again would give it a second row.
void RenameEngine::forgetWhatWasRead(ProgressInfo& progress) {
    ProcessingPipeline cleanUp(*this);
    cleanUp.setProgressInfo(&progress);
    cleanUp.addStage(std::make_unique<DropGoneItemsStage>(*this, isGoneTold.exchange(false)));
    cleanUp.addStage(std::make_unique<CleanUpFilesStage>(*this));
    static_cast<void>(cleanUp.process());
    SourceItemManager::sharedInstance().resetCache();
}

/// Of all previews that wait, only the last in line runs: it sees the settings of the moment anyway.
void RenameEngine::internalProcessPreviewThread(ProgressInfo& progress, EngineTurns::Turn& turn) {
    {
        const std::lock_guard token(previewPipelinesWaitingToken);
        ++previewPipelinesWaiting;
    }
    debugLog("{} waiting for renameEngine lock (previewPipelinesWaiting = {})", threadDescription(),
             previewPipelinesWaiting.load());
    const EngineTurns::Held lock(turn);
    // Counted down on every way out: a count too high would keep all later previews from running.
    const std::shared_ptr<void> countDown(nullptr, [this](void*) {
        const std::lock_guard token(previewPipelinesWaitingToken);
        --previewPipelinesWaiting;
    });
    if (previewPipelinesWaiting == 1 && !ending) {
        if (rereadRequested.exchange(false))
            forgetWhatWasRead(progress);
        static_cast<void>(createPreviewPipelineWith(&progress)->process());
        refreshList();
        onMainThread([](EngineHost& host) { host.showStats(); });
    }
}

void RenameEngine::onMainThread(const std::function<void(EngineHost&)>& action) {
    application.runLoop().performAndWait([this, &action] { action(application); });
}

std::unique_ptr<ProcessingPipeline> RenameEngine::createPreviewPipelineWith(ProgressInfo* progress) {
    auto pipeline = std::make_unique<ProcessingPipeline>(*this);
    pipeline->setProgressInfo(progress);
    pipeline->addStage(std::make_unique<CleanUpProcessingErrorsStage>(*this));
    pipeline->addStage(std::make_unique<ReadItemsIntoDatabaseStage>(*this));
    if (given)
        pipeline->addStage(std::make_unique<GiveNamesStage>(*this, *given));
    else
        addNamingStages(*pipeline);
    using Task = ResolveFileNameConflictsStage::Task;
    const bool resolves = pipeline->settingsOfRun().shouldPreviewConflictResolution;
    pipeline->addStage(
        std::make_unique<ResolveFileNameConflictsStage>(*this, resolves ? Task::resolve : Task::foresee));
    return pipeline;
}

void RenameEngine::addNamingStages(ProcessingPipeline& pipeline) {
    const NamePins settled = pins();
    // Once more after the last is gone, for the rows that bear its marks.
    const bool isByHand = !settled.isEmpty() || hadPins;
    hadPins = !settled.isEmpty();
    if (isByHand)
        pipeline.addStage(std::make_unique<LeaveOutStage>(*this, settled));
    using Extent = ComputeProvisionalNamesStage::Extent;
    pipeline.addStage(std::make_unique<ComputeProvisionalNamesStage>(*this, Extent::firstNewRows));
    pipeline.addStage(std::make_unique<AddFileSortingDataStage>(*this));
    pipeline.addStage(std::make_unique<ComputeProvisionalNamesStage>(*this));
    if (isByHand)
        pipeline.addStage(std::make_unique<PinNamesStage>(*this, settled));
}

std::unique_ptr<ProcessingPipeline> RenameEngine::createRenamingPipeline(ProgressInfo* progress,
                                                                         bool andContinue) {
    auto pipeline = std::make_unique<ProcessingPipeline>(*this);
    pipeline->needRows();
    pipeline->setProgressInfo(progress);
    pipeline->addStage(std::make_unique<CleanUpProcessingErrorsStage>(*this));
    pipeline->addStage(std::make_unique<ResolveFileNameConflictsStage>(*this));
    const Settings::OnConflict rule = pipeline->settingsOfRun().conflictRule();
    if (rule == Settings::OnConflict::stop) // the preview may be old
        pipeline->addStage(std::make_unique<ResolveFileNameConflictsStage>(
            *this, ResolveFileNameConflictsStage::Task::lookAnew));
    if (rule != Settings::OnConflict::number)
        pipeline->addStage(std::make_unique<HeedProblemsStage>(*this));
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
