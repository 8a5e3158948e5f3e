#pragma once

#include "engine/history/TakeBack.h"
#include "engine/naming/GiveNamesStage.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/EngineThreads.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace tavrin {

class EngineHost;
class ProcessingPipeline;
class ProgressInfo;
class StoreContext;

/// Decides which pipelines exist and how they reach a thread: each request gets a thread of its own, one
/// pipeline runs at a time under the engine's lock, and of waiting previews only the last in line runs.
class RenameEngine : public EngineState {
  public:
    explicit RenameEngine(EngineHost& host);
    /// Asks a running rename to stop and waits for all threads. These may be waiting for the main thread, so
    /// the run loop must have been closed or be running on another thread.
    ~RenameEngine();

    // Main thread; each returns at once.
    void processPreviewPipeline(ProgressInfo& progress);
    /// The names that previews from now on give instead of those of the chain, and that a rename takes as
    /// they are. While no request is under way.
    void giveNames(GivenNames names) { given = std::make_unique<const GivenNames>(std::move(names)); }
    /// Has the next preview read all items anew, as if they had just been added. Any thread.
    void rereadAtNextPreview() {
        isGoneTold = true;
        rereadRequested = true;
    }
    /// The same after names were given that the list does not know yet: what seems gone is not told.
    void rereadMovedAtNextPreview() { rereadRequested = true; }
    void processRenamingPipelineThenClearList(ProgressInfo& progress);
    void processRenamingPipelineThenContinue(ProgressInfo& progress);
    void processRenamingPipelineThenQuit(ProgressInfo& progress);
    /// Foresees anew which names the rename will be refused, and has the list refreshed.
    void processLook();
    /// Has the list on show sorted anew and refreshed, beside all that runs.
    void processListRefresh();
    /// Work on the rows that is done on a thread of its own; what it returns is done on the main thread,
    /// where it is anything. It answers for its StoreErrors itself.
    using RowWork = std::function<std::function<void()>(StoreContext&)>;
    /// Reads rows beside all that runs.
    void readRows(RowWork work) { workOnRows(std::move(work), nullptr); }
    /// Changes rows in its turn among the runs.
    void changeRows(RowWork work) {
        workOnRows(std::move(work), std::make_shared<EngineTurns::Turn>(engineLock));
    }
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

  private:
    void addNamingStages(ProcessingPipeline& pipeline);
    void startRenaming(ProgressInfo& progress, bool andContinue, std::function<void(EngineHost&)> completion);
    void workOnRows(RowWork work, std::shared_ptr<EngineTurns::Turn> turn);
    TakeBackResult takeBack(ProgressInfo& progress, const TakeBackRequest& request);
    void forgetWhatWasRead(ProgressInfo& progress);
    void internalProcessPreviewThread(ProgressInfo& progress, EngineTurns::Turn& turn);
    /// Sorts the list on this thread, so that the main thread finds it in the store, and has it shown.
    void refreshList();
    /// Runs the action on the main thread and waits for it.
    void onMainThread(const std::function<void(EngineHost&)>& action);

    EngineTurns engineLock;
    std::unique_ptr<const GivenNames> given; ///< null: the chain makes the names
    bool hadPins = false;                    ///< at the last preview; under the engine's lock
    std::mutex previewPipelinesWaitingToken;
    std::atomic<int> previewPipelinesWaiting{0};
    std::atomic<bool> ending{false};
    std::atomic<bool> rereadRequested{false};
    std::atomic<bool> isGoneTold{false}; ///< at the next time that all is read anew
    RenameThreads threads;
};

} // namespace tavrin
