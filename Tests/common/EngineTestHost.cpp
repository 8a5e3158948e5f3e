#include "common/EngineTestHost.h"

#include "common/ScriptedFrontEnd.h"
#include "support/text/Text.h"

#include <gtest/gtest.h>

#include <exception>
#include <stdexcept>
#include <thread>
#include <utility>

namespace tavrin::test {

EngineTestHost::EngineTestHost(ItemStore::Options options)
    : progress(loop), sourceItems([this]() -> StoreContext& { return *mainContext; }), engine(*this) {
    UserDefaults::setSharedInstance(&defaults);
    ActionList::setSharedActionList(&actionList);
    actionList.setRunLoop(&loop);
    makeStore(std::move(options));
    set("interactiveMode", 0);
    set("renameMode", 0);
}

// Frees the workers that wait for this thread; the engine, the last member, then waits for them.
EngineTestHost::~EngineTestHost() { loop.close(); }

EngineTestHost::SharedInstances::~SharedInstances() {
    ActionList::setSharedActionList(nullptr);
    UserDefaults::setSharedInstance(nullptr);
}

ItemStore::Options EngineTestHost::inFile(std::string folder, std::size_t budget) {
    ItemStore::Options options;
    options.kind = ItemStore::Kind::file;
    options.folder = std::move(folder);
    options.residentBudget = budget;
    return options;
}

void EngineTestHost::makeStore(ItemStore::Options options) {
    mainContext.reset();
    store.emplace(std::move(options));
    mainContext = std::make_unique<StoreContext>(*store, StoreContext::MergePolicy::storeWins);
    store->setDidSaveHandler([this](const StoreChanges& changes) {
        if (engine.busyMigratingStore() || !mainContext)
            return;
        const std::lock_guard lock(mainContext->mutex());
        mainContext->merge(changes);
    });
}

void EngineTestHost::dropStore() {
    mainContext.reset();
    store.reset();
}

void EngineTestHost::note(const std::string& event) {
    EXPECT_TRUE(loop.isCurrent()) << event;
    events.push_back(event);
    if (onEvent)
        onEvent(event);
}

void EngineTestHost::add(const std::vector<std::string>& paths) {
    for (const std::string& path : paths)
        EXPECT_TRUE(sourceItems.addSourceItem(path)) << path;
}

void EngineTestHost::setSteps(const std::vector<Step>& steps) {
    PropertyArray entries;
    for (const Step& step : steps) {
        const auto action = actionList.newActionForName(step.action);
        PropertyDictionary parameters = action->parameterList();
        for (const auto& [key, value] : step.parameters)
            parameters.insert_or_assign(key, value);
        entries.emplace_back(PropertyDictionary{{"action name", text::fromUtf8(step.action)},
                                                {"action parameter list", std::move(parameters)}});
    }
    composite.setFlatParameterList(
        PropertyDictionary{{"composite actions array", std::move(entries)}, {"currentActionIndex", 0}});
}

void EngineTestHost::preview() {
    engine.processPreviewPipeline(progress);
    waitUntilIdle();
}

void EngineTestHost::renameThenContinue() {
    engine.processRenamingPipelineThenContinue(progress);
    waitUntilIdle();
}

void EngineTestHost::saveList(int format, bool onlyAffected, const std::string& path) {
    engine.processFileListPipeline(progress, format, onlyAffected, path);
    waitUntilIdle();
}

void EngineTestHost::waitUntilIdle() {
    ASSERT_TRUE(loop.runUntil([this] { return !engine.isBusy(); }));
}

void EngineTestHost::onWorker(const std::function<void()>& work) {
    bool hasEnded = false;
    std::exception_ptr thrown;
    std::thread worker([&] {
        try {
            work();
        } catch (...) {
            thrown = std::current_exception();
        }
        loop.post([&] { hasEnded = true; });
    });
    const bool ended = loop.runUntil([&] { return hasEnded; });
    worker.join();
    ASSERT_TRUE(ended);
    if (thrown)
        std::rethrow_exception(thrown);
}

std::map<std::string, std::string> EngineTestHost::finalNames() {
    StoreContext context(*store, StoreContext::MergePolicy::storeWins);
    std::map<std::string, std::string> names;
    for (const RowId id : context.fetch({FetchEntity::file, Predicate::always(), {}, 0}))
        names.emplace(context.fullPath(id), text::toUtf8(context.finalName(id)));
    return names;
}

EngineControl EngineTestHost::counters() {
    const std::lock_guard lock(mainContext->mutex());
    return mainContext->engineControl();
}

std::vector<std::string> EngineTestHost::errors() {
    const std::lock_guard lock(mainContext->mutex());
    std::vector<std::string> lines;
    for (const ProcessingError& error : mainContext->processingErrors())
        lines.push_back(error.title + " | " + error.message + " | " + error.path);
    return lines;
}

void EngineTestHost::ask(const RunQuestion& question, const ConfirmationAnswerPointer& answer) {
    prompts.asked.push_back(inWords(question));
    const auto give = [&](const auto& script, const auto& each) {
        if (script)
            answer->give(script(each));
        else
            ADD_FAILURE() << "unexpected question: " << prompts.asked.back();
    };
    struct Dispatch {
        const ScriptedAnswers& scripts;
        decltype(give)& then;
        void operator()(const RenameQuestion& q) const { then(scripts.onRename, q); }
        void operator()(const SwapQuestion& q) const { then(scripts.onSwap, q); }
        void operator()(const NameCycleQuestion& q) const { then(scripts.onNameCycle, q); }
        void operator()(const ProblemReport& q) const { then(scripts.onProblem, q); }
        void operator()(const LibraryWarning& q) const { then(scripts.onLibraryWarning, q); }
        void operator()(const NoRecordQuestion& q) const { then(scripts.onNoRecord, q); }
        void operator()(const PipelineFailure& q) const { then(scripts.onPipelineFailed, q); }
    };
    std::visit(Dispatch{prompts, give}, question);
}

void EngineTestHost::updatePreview() {
    loop.post([this] { note("updatePreview"); });
}

void EngineTestHost::showFileListSavingCompletionDialog(int format) {
    note("showFileListSavingCompletionDialog " + std::to_string(format));
}

void EngineTestHost::reloadPreview() {
    sourceItems.resetCache();
    note("reloadPreview");
}

void EngineTestHost::clearList() {
    makeStore({});
    note("clearList");
}

} // namespace tavrin::test
