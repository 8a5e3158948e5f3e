#pragma once

#include "actions/ActionList.h"
#include "actions/CompositeRenameAction.h"
#include "common/ManualRunLoop.h"
#include "common/Recipes.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "engine/pipeline/EngineHost.h"
#include "engine/pipeline/ProgressInfo.h"
#include "engine/pipeline/RenameEngine.h"
#include "platform/propertylists/UserDefaults.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "store/sources/SourceItemManager.h"

namespace tavrin::test {

/// A user whose answers the test scripts, by the kind of question. One without a script is a failure of the
/// test, and is answered with "stop".
struct ScriptedAnswers {
    template <typename Question> using Script = std::function<ConfirmationChoice(const Question&)>;
    Script<RenameQuestion> onRename;
    Script<SwapQuestion> onSwap;
    Script<NameCycleQuestion> onNameCycle;
    Script<ProblemReport> onProblem;
    Script<LibraryWarning> onLibraryWarning;
    Script<NoRecordQuestion> onNoRecord;
    Script<PipelineFailure> onPipelineFailed;

    std::vector<std::string> asked; ///< every question, in order, in words

    template <typename Question> [[nodiscard]] const Script<Question>& script() const {
        return std::get<const Script<Question>&>(std::tie(onRename, onSwap, onNameCycle, onProblem,
                                                          onLibraryWarning, onNoRecord, onPipelineFailed));
    }
};

/// An application around one engine: real store, settings, actions and source items, a run loop driven by the
/// test's thread, and a scripted user. New settings ask nothing and process files and folders.
class EngineTestHost : public EngineHost {
  private:
    /// Withdraws the shared instances when everything else has gone.
    struct SharedInstances {
        ~SharedInstances() {
            ActionList::setSharedActionList(nullptr);
            UserDefaults::setSharedInstance(nullptr);
        }
    };
    SharedInstances sharedInstances;

  public:
    explicit EngineTestHost(ItemStore::Options options = {});
    /// Frees the workers that wait for this thread; the engine, the last member, then waits for them.
    ~EngineTestHost() override { loop.close(); }
    /// A store in a file of this folder that keeps this much in memory, in bytes.
    [[nodiscard]] static ItemStore::Options inFile(std::string folder, std::size_t budget = 64U << 20);

    ManualRunLoop loop;
    UserDefaults defaults;
    ActionList actionList;
    TVRNGlobalPreferencesPseudoAction settings;
    CompositeRenameAction composite;
    ProgressInfo progress;
    ScriptedAnswers prompts;
    /// The calls of the engine that end on the main thread, in order; a list save with its format.
    std::vector<std::string> events;
    /// Called with each of them as it happens.
    std::function<void(const std::string&)> onEvent;
    bool isSilent = false;
    /// Called with what runs find out about names by hand.
    std::function<void(std::vector<NamePins::Change>)> onPins = [](auto) {};

  private:
    std::optional<ItemStore> store;
    std::unique_ptr<StoreContext> mainContext;

  public:
    SourceItemManager sourceItems;
    RenameEngine engine;

    /// Puts paths on the list; fails the test when one is refused.
    void add(const std::vector<std::string>& paths);
    using Step = test::Step;
    void setSteps(const std::vector<Step>& steps) { composite.setFlatParameterList(chain(steps)); }
    void set(const std::string& key, PropertyValue value) { settings.setValue(std::move(value), key); }

    // Whole runs, waited for.
    void preview() {
        engine.processPreviewPipeline(progress);
        waitUntilIdle();
    }
    void saveList(int format, bool onlyAffected, const std::string& path) {
        engine.processFileListPipeline(progress, format, onlyAffected, path);
        waitUntilIdle();
    }
    /// Runs the loop until the engine is idle.
    void waitUntilIdle();
    /// Runs the work on a thread of its own, as a worker of the engine would, and the loop meanwhile.
    void onWorker(const std::function<void()>& work);

    /// What the preview shows: full path to new name (bytes), of all `File` rows.
    std::map<std::string, std::string> finalNames();
    EngineControl counters() {
        const std::lock_guard lock(mainContext->mutex());
        return mainContext->engineControl();
    }
    /// "title | message | path" each.
    std::vector<std::string> errors();

    // What the engine asks for.
    ItemStore* persistentStoreCoordinator() override { return store ? &*store : nullptr; }
    StoreContext& managedObjectContext() override { return *mainContext; }
    TVRNGlobalPreferencesPseudoAction& globalSettings() override { return settings; }
    CompositeRenameAction& compositeAction() override { return composite; }
    ProgressInfo& progressInfo() override { return progress; }
    RunLoop& runLoop() override { return loop; }
    void ask(const RunQuestion& question, const ConfirmationAnswerPointer& answer) override;
    bool isSilentDroplet() override { return isSilent; }
    void updatePreview() override {
        loop.post([this] { note("updatePreview"); });
    }
    void changePins(std::vector<NamePins::Change> changes) override { onPins(std::move(changes)); }
    void startProgressWindow() override { note("startProgressWindow"); }
    void stopProgressWindow() override { note("stopProgressWindow"); }
    void refreshPreview() override { note("refreshPreview"); }
    void showStats() override { note("showStats"); }
    void showCompletionDialog() override { note("showCompletionDialog"); }
    void showFileListSavingCompletionDialog(int format) override {
        note("showFileListSavingCompletionDialog " + std::to_string(format));
    }
    void showFileListNotSaved(const std::string& path, const std::string& reason) override {
        note("showFileListNotSaved " + path + ": " + reason);
    }
    void reloadPreview() override {
        sourceItems.resetCache();
        note("reloadPreview");
    }
    void clearList() override {
        makeStore({});
        note("clearList");
    }
    void terminate() override { note("terminate"); }
    void presentNotice(const std::string& text) override { note("notice " + text); }
    void revealReport(const std::string& path) override { note("revealReport " + path); }

    /// Takes the store away, as when none can be made.
    void dropStore() {
        mainContext.reset();
        store.reset();
    }

  private:
    void makeStore(ItemStore::Options options);
    void note(const std::string& event);
};

} // namespace tavrin::test
