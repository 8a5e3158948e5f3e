#include "common/EngineTestHost.h"

#include "common/QuestionWords.h"
#include "common/Testing.h"

#include <future>

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

void EngineTestHost::waitUntilIdle() {
    ASSERT_TRUE(loop.runUntil([this] { return !engine.isBusy(); }));
}

void EngineTestHost::onWorker(const std::function<void()>& work) {
    std::packaged_task<void()> task(work);
    bool hasEnded = false;
    std::thread worker([&] {
        task();
        loop.post([&] { hasEnded = true; });
    });
    const bool ended = loop.runUntil([&] { return hasEnded; });
    worker.join();
    ASSERT_TRUE(ended);
    task.get_future().get(); // throws what the work has thrown
}

std::map<std::string, std::string> EngineTestHost::finalNames() {
    StoreContext context(*store, StoreContext::MergePolicy::storeWins);
    std::map<std::string, std::string> names;
    for (const RowId id : context.fetch({FetchEntity::file, Predicate::always(), {}, 0}))
        names.emplace(context.fullPath(id), text::toUtf8(context.finalName(id)));
    return names;
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
    const auto give = [&]<typename Question>(const Question& each) {
        if (const auto& script = prompts.script<Question>())
            answer->give(script(each));
        else
            ADD_FAILURE() << "unexpected question: " << prompts.asked.back();
    };
    std::visit(give, question);
}

} // namespace tavrin::test
