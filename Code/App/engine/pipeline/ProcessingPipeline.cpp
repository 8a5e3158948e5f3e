#include "engine/pipeline/ProcessingPipeline.h"

#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/asking/ErrorReportManager.h"
#include "engine/asking/UserQuestions.h"
#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProgressInfo.h"
#include "platform/processes/RunLoop.h"
#include "platform/propertylists/UserDefaults.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "support/application/DebugLog.h"

#include <fmt/chrono.h>

#include <chrono>
#include <ctime>
#include <cxxabi.h>
#include <exception>
#include <utility>

namespace tavrin {

namespace {

class Stopwatch {
  public:
    [[nodiscard]] double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

  private:
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

} // namespace

ProcessingPipeline::ProcessingPipeline(EngineState& owner) : ProcessingStage(owner) {
    settings = owner.host().globalSettings().values();
}

ProcessingPipeline::~ProcessingPipeline() = default;

void ProcessingPipeline::addStage(std::unique_ptr<ProcessingStage> stage) {
    stage->setProgressInfo(progress);
    stage->setSettings(settings);
    stages.push_back(std::move(stage));
}

bool ProcessingPipeline::process() {
    debugLog("----------------------------");
    debugLog("garbage collected");
    debugLog("pipeline contains {} stages", stages.size());
    debugLog("pipeline started: {:%Y-%m-%d %H:%M:%S} +0000", fmt::gmtime(std::time(nullptr)));
    const Stopwatch watch;
    Attempt attempt = Attempt::failed;
    for (int number = 1; number <= 2 && attempt == Attempt::failed; ++number) {
        attempt = runStages();
        if (attempt == Attempt::noStore)
            return false;
        if (attempt == Attempt::failed && !recover())
            break;
    }
    const StageProgress report(progress);
    report.done(true);
    report.stage("Done.");
    report.describe("Done.");
    debugLog("pipeline finished in {:.1f} seconds", watch.seconds());
    return attempt == Attempt::finished;
}

ProcessingPipeline::Attempt ProcessingPipeline::runStages() {
    try {
        ItemStore* store = ownStore ? ownStore : engine.host().persistentStoreCoordinator();
        if (!store)
            return Attempt::noStore;
        debugLog("{}", store->type());
        ownContext = std::make_unique<StoreContext>(*store, StoreContext::MergePolicy::contextWins);
        context = ownContext.get();
        StageProgress(progress).done(false);
        int number = 0;
        for (const auto& stage : stages) {
            if (!runStage(*stage, ++number)) {
                debugLog("ProcessingPipeline interrupted by stage: {}", runningStage);
                return Attempt::interrupted;
            }
        }
        return Attempt::finished;
    } catch (const std::exception& exception) {
        failure = {runningStage, nameOfException(exception), exception.what(), detailsOfException(exception)};
    } catch (...) {
        failure = {runningStage, "unknown", "unknown", {}};
    }
    return Attempt::failed;
}

bool ProcessingPipeline::runStage(ProcessingStage& stage, int number) {
    const Stopwatch watch;
    const StageProgress report(progress);
    runningStage = stage.className();
    report.stage(stage.stageDescription());
    report.item(0);
    stage.setManagedObjectContext(context);
    const bool goesOn = stage.process();
    report.describe("Cleaning up..");
    context->commit();
    context->reset();
    report.item(0);
    debugLog("--> Stage {}: {} took {:.1f}", number, runningStage, watch.seconds());
    return goesOn;
}

void ProcessingPipeline::failedOnSQLiteStore() {
    UserDefaults& defaults = UserDefaults::sharedInstance();
    defaults.setObject("hasFailedOnSQLiteStoreBefore", true);
    defaults.setObject("store", 1);
    static_cast<void>(defaults.synchronize());
}

bool ProcessingPipeline::recover() {
    debugLog("************************ Processing Pipeline Was Interrupted By Exception: {} ({})",
             failure.name, failure.reason);
    failedOnSQLiteStore();
    const StageProgress report(progress);
    report.stage("Migrating to in-memory store.");
    report.describe("Processing...");
    report.indeterminate(true);
    const bool hasMoved = moveStoreIntoMemory();
    if (needsRows && context)
        breakOffStages();
    if (!hasMoved) {
        giveUp();
        return false;
    }
    dropContext();
    engine.host().updatePreview();
    return !needsRows;
}

/// To run them anew would find nothing to do and say that all is well.
void ProcessingPipeline::breakOffStages() {
    StoreContext fresh(context->store(), StoreContext::MergePolicy::contextWins);
    for (const auto& stage : stages) {
        stage->setManagedObjectContext(&fresh);
        stage->breakOff(failure.reason);
    }
}

bool ProcessingPipeline::moveStoreIntoMemory() {
    try {
        if (!context)
            return false;
        context->commitWithoutRows();
        return engine.migrateToInMemoryStoreOnTheFly(*context);
    } catch (const std::exception& exception) {
        debugLog("migration failed! {}", exception.what());
        return false;
    }
}

void ProcessingPipeline::giveUp() {
    EngineHost& host = engine.host();
    static_cast<void>(
        askUser(host, PipelineFailure{"Processing Pipeline Failed.",
                                      "There was an unrecoverable error during processing.\n\nRestarting the "
                                      "application will usually resolve such problems."}));
    const std::string body =
        fmt::format("Exception caught in the {} stage of ProcessingPipeline:\n{}: {}\n{}\n\n", failure.stage,
                    failure.name, failure.reason, failure.details);
    try {
        ErrorReportManager(host).writeErrorReportWithString(body, ErrorReportManager::titleOfFailureReport());
    } catch (...) {
        debugLog("*********** error report writing failed!!");
    }
    host.runLoop().performAndWait([&host] { host.terminate(); });
}

void ProcessingPipeline::dropContext() {
    context = nullptr;
    ownContext.reset();
}

} // namespace tavrin
