#pragma once

#include "documents/Settings.h"

#include <string>
#include <string_view>

namespace tavrin {

class EngineHost;
class ProgressInfo;
class EngineState;
class StoreContext;

/// One step of a pipeline. Runs on the pipeline's worker thread against the pipeline's context; holds no
/// state from one `process` to the next.
class ProcessingStage {
  public:
    virtual ~ProcessingStage() = default;

    /// True to go on with the next stage, false to interrupt the pipeline, which is a normal end. Throws
    /// StoreError (or any exception) on a failure of the store.
    virtual bool process() { return true; }
    /// The name in the log and in reports: the name of the class.
    [[nodiscard]] virtual std::string className() const = 0;
    [[nodiscard]] virtual std::string stageDescription() const { return "Processing..."; }
    /// The run has lost the rows it works on, because the store could not be read, and is not begun anew:
    /// puts down and commits what is true of the work done so far, and tells the user. `reason` is the
    /// system's. Called with a fresh context, for each stage of the run, whether it has begun or not.
    virtual void breakOff(const std::string& /*reason*/) {}

    /// Not owned; null means that all reports of progress do nothing.
    virtual void setProgressInfo(ProgressInfo* info) { progress = info; }
    /// The settings that the whole run goes by.
    void setSettings(const Settings& ofRun) { settings = ofRun; }
    /// Not owned; set by the pipeline right before `process`.
    void setManagedObjectContext(StoreContext* newContext) { context = newContext; }

    /// Inserts a row to be shown at the end of the run.
    void addError(std::string_view title, std::string_view message, std::string_view path);

  protected:
    explicit ProcessingStage(EngineState& owner) : engine(owner) {}

    /// Commits and drops the values of all rows, which are read anew when asked for.
    void saveAndRefaultObjects();

    EngineState& engine;
    Settings settings;
    ProgressInfo* progress = nullptr;
    StoreContext* context = nullptr;
};

} // namespace tavrin
