#pragma once

#include "engine/history/RunPurpose.h"
#include "engine/history/TakeBack.h"
#include "engine/pipeline/EngineTurns.h"
#include "store/queries/FilterManager.h"
#include "store/queries/Predicate.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace tavrin {

class EngineHost;
class ProcessingPipeline;
class ProgressInfo;
class RenameThreads;
class StoreContext;

/// Decides which pipelines exist and how they reach a thread: each request gets a thread of its own, one
/// pipeline runs at a time under the engine's lock, and of waiting previews only the last in line runs.
class RenameEngine {
  public:
    explicit RenameEngine(EngineHost& host);
    /// Asks a running rename to stop and waits for all threads. These may be waiting for the main thread, so
    /// the run loop must have been closed or be running on another thread.
    ~RenameEngine();
    RenameEngine(const RenameEngine&) = delete;
    RenameEngine& operator=(const RenameEngine&) = delete;

    // Main thread; each returns at once.
    void processPreviewPipeline(ProgressInfo& progress);
    /// Has the next preview read all items anew, as if they had just been added. Any thread.
    void rereadAtNextPreview() { rereadRequested = true; }
    void processRenamingPipelineThenClearList(ProgressInfo& progress);
    void processRenamingPipelineThenContinue(ProgressInfo& progress);
    void processRenamingPipelineThenQuit(ProgressInfo& progress);
    /// Looks at the records of past runs, which may be long, beside all that runs; what `look` returns is
    /// done on the main thread, where it is anything.
    void readHistory(std::function<std::function<void()>(const RunHistory&)> look);
    /// Takes a run back or finishes one, without a word on the list of items; `completion` is called on the
    /// main thread.
    void processTakeBack(ProgressInfo& progress, TakeBackRequest request,
                         std::function<void(EngineHost&, const TakeBackResult&)> completion);
    /// `path` in bytes; formats 0 to 2.
    void processFileListPipeline(ProgressInfo& progress, int format, bool shouldIncludeOnlyAffectedFiles,
                                 const std::string& path);
    /// Whether any request is waiting or running. Any thread. An empty action is posted to the run loop
    /// whenever a request has ended.
    [[nodiscard]] bool isBusy() const;
    /// Whether a preview waits for the one that runs. Any thread.
    [[nodiscard]] bool isPreviewWaiting() const { return previewPipelinesWaiting > 1; }

    [[nodiscard]] std::unique_ptr<ProcessingPipeline> createPreviewPipelineWith(ProgressInfo* progress);
    [[nodiscard]] std::unique_ptr<ProcessingPipeline> createRenamingPipeline(ProgressInfo* progress,
                                                                             bool andContinue);
    /// A save-list run has no progress record: its panel shows frozen text.
    struct FileListArguments {
        int format = 0;
        bool shouldIncludeOnlyAffectedFiles = false;
        std::string path;
        std::string* reason = nullptr; ///< gets why nothing was written; stays empty when all went well
    };
    [[nodiscard]] std::unique_ptr<ProcessingPipeline>
    createSaveToFileListPipeline(const FileListArguments& arguments);

    /// Where runs are recorded; nowhere at first. Set before the first request.
    void setHistoryPlace(HistoryPlace newPlace) { history = std::move(newPlace); }
    [[nodiscard]] const HistoryPlace& historyPlace() const { return history; }

    /// The next pass marker; the first is 2, after 99 comes 0.
    PassMarker nextStageFlagCounter();

    /// Switches the failing pipeline's store into memory; false when it is there already. Worker thread.
    bool migrateToInMemoryStoreOnTheFly(StoreContext& context);
    [[nodiscard]] bool busyMigratingStore() const { return migrating; }

    /// The value that `manualOrder` of the next row gets; goes up for the life of the engine.
    std::int32_t nextManualOrder() { return manualOrderCounter++; }

    [[nodiscard]] EngineHost& host() const { return application; }

    /// Asks the running rename to stop after the step in hand, as if the user had answered "stop". Any
    /// thread, also a signal's helper thread. Starting a rename takes it back.
    void requestStop() { stopRequested = true; }
    [[nodiscard]] bool isStopRequested() const { return stopRequested; }

    // Counters of the EngineControl row of the given context.
    void computeTotalNumberOfFilesForContext(StoreContext& context, const ItemFilter& filter);
    void computeTotalNumberOfFilesSelectedOrNotForContext(StoreContext& context);
    void computeNumberOfFilesThatNeedRenaming(StoreContext& context, const ItemFilter& filter);
    void computeNumberOfFolders(StoreContext& context, const ItemFilter& filter);

  private:
    void startRenaming(ProgressInfo& progress, bool andContinue, std::function<void(EngineHost&)> completion);
    TakeBackResult takeBack(ProgressInfo& progress, const TakeBackRequest& request);
    void forgetWhatWasRead(ProgressInfo& progress);
    void internalProcessPreviewThread(ProgressInfo& progress, EngineTurns::Turn& turn);
    /// Runs the action on the main thread and waits for it.
    void onMainThread(const std::function<void(EngineHost&)>& action);

    EngineHost& application;
    HistoryPlace history;
    EngineTurns engineLock;
    std::mutex previewPipelinesWaitingToken;
    std::atomic<int> previewPipelinesWaiting{0};
    std::atomic<int> stageFlagCounter{1};
    std::atomic<bool> migrating{false};
    std::atomic<bool> stopRequested{false};
    std::atomic<bool> ending{false};
    std::atomic<bool> rereadRequested{false};
    std::int32_t manualOrderCounter = 0; // touched under the engine's lock only
    std::unique_ptr<RenameThreads> threads;
};

} // namespace tavrin
