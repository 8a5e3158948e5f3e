#pragma once

#include "engine/pipeline/ProcessingStage.h"

#include <memory>
#include <string>
#include <vector>

namespace tavrin {

class ItemStore;

/// Runs its stages one after the other against one private context, commits after each, and stops when one
/// says so. When the store fails it is moved into memory and all stages run once more, unless they need the
/// rows that are lost by it; a failure in memory is told to the user, reported, and ends the application.
/// Runs on a worker thread, under the engine's lock.
class ProcessingPipeline : public ProcessingStage {
  public:
    /// Takes the settings of the moment for the whole run.
    explicit ProcessingPipeline(EngineState& owner);
    ~ProcessingPipeline() override;

    /// Works on this store instead of the host's; not owned.
    void setStore(ItemStore& own) { ownStore = &own; }
    /// Appends the stage and hands it the pipeline's progress record, which must have been set before.
    void addStage(std::unique_ptr<ProcessingStage> stage);
    /// The stages work on rows that an earlier run has read: without these they are broken off.
    void needRows() { needsRows = true; }
    /// False when a stage interrupted the run or there is no store.
    bool process() override;
    [[nodiscard]] std::string className() const override { return "ProcessingPipeline"; }
    [[nodiscard]] const Settings& settingsOfRun() const { return settings; }
    [[nodiscard]] const std::vector<std::unique_ptr<ProcessingStage>>& allStages() const { return stages; }

    /// Notes in the user defaults that the store failed, and that the next one is to be in memory.
    static void failedOnSQLiteStore();

  private:
    enum class Attempt { finished, interrupted, noStore, failed };
    /// What is known of an exception.
    struct Failure {
        std::string stage;
        std::string name;
        std::string reason;
        std::string details;
    };

    Attempt runStages();
    bool runStage(ProcessingStage& stage, int number);
    /// True when the run may be tried again.
    bool recover();
    void breakOffStages();
    bool moveStoreIntoMemory();
    void giveUp();
    void dropContext();

    std::vector<std::unique_ptr<ProcessingStage>> stages;
    ItemStore* ownStore = nullptr;
    bool needsRows = false;
    std::unique_ptr<StoreContext> ownContext;
    std::string runningStage;
    Failure failure;
};

} // namespace tavrin
