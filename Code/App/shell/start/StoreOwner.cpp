#include "shell/start/StoreOwner.h"

#include "platform/files/FileSystem.h"
#include "platform/propertylists/UserDefaults.h"
#include "store/contexts/StoreContext.h"
#include "store/paging/ItemStore.h"
#include "support/application/DebugLog.h"

#include <atomic>

namespace tavrin {

/// A store with its main context. Members go in reverse order: the context before its store.
struct StoreOwner::Generation {
    explicit Generation(ItemStore::Options storeOptions) : store(std::move(storeOptions)) {}

    ItemStore store;
    std::unique_ptr<StoreContext> mainContext;
    /// The main context once it is complete, for commits of any thread.
    std::atomic<StoreContext*> merging{nullptr};
};

StoreOwner::StoreOwner(UserDefaults& userDefaults, Options storeOptions,
                       std::function<void(const std::string& message)> noticePresenter,
                       std::function<bool()> migrating)
    : defaults(userDefaults), options(std::move(storeOptions)), postNotice(std::move(noticePresenter)),
      isBusyMigrating(std::move(migrating)) {}

StoreOwner::~StoreOwner() = default;

ItemStore* StoreOwner::persistentStoreCoordinator() { return &currentGeneration().store; }

StoreContext& StoreOwner::managedObjectContext() {
    const std::lock_guard lock(contextAccessToken);
    Generation& generation = currentGeneration();
    if (generation.mainContext)
        return *generation.mainContext;
    generation.mainContext =
        std::make_unique<StoreContext>(generation.store, StoreContext::MergePolicy::storeWins);
    generation.merging = generation.mainContext.get();
    return *generation.mainContext;
}

void StoreOwner::drop() {
    const std::scoped_lock lock(contextAccessToken, persistentStoreCreationToken);
    ++drops;
    if (current)
        retired.push_back(std::move(current));
}

void StoreOwner::releaseRetired() {
    std::vector<std::unique_ptr<Generation>> released;
    const std::lock_guard lock(persistentStoreCreationToken);
    released.swap(retired);
}

std::uint64_t StoreOwner::generation() const {
    const std::lock_guard lock(persistentStoreCreationToken);
    return drops;
}

StoreOwner::Generation& StoreOwner::currentGeneration() {
    const std::lock_guard lock(persistentStoreCreationToken);
    if (!current)
        current = makeGeneration();
    return *current;
}

std::unique_ptr<StoreOwner::Generation> StoreOwner::makeGeneration() {
    ItemStore::Options storeOptions;
    storeOptions.kind =
        defaults.integerForKey("store") == 1 ? ItemStore::Kind::memory : ItemStore::Kind::file;
    if (storeOptions.kind == ItemStore::Kind::file) {
        (void)FileSystem::sharedInstance().makeFolders(options.dataFolder);
        storeOptions.folder = options.dataFolder;
        storeOptions.vfs = options.vfs;
        storeOptions.residentBudget = options.residentBudget;
        storeOptions.fileRefused = [this](const std::string& reason) { tellThatFileRefused(reason); };
    }
    auto generation = std::make_unique<Generation>(std::move(storeOptions));
    Generation* made = generation.get();
    generation->store.setDidSaveHandler([this, made](const StoreChanges& changes) {
        if (!isBusyMigrating())
            didSave(*made, changes);
    });
    if (const auto& error = generation->store.openError()) {
        defaults.setObject("hasFailedOnSQLiteStoreBefore", true);
        defaults.setObject("store", 1);
        (void)defaults.synchronize();
        tellThatFileRefused(*error);
    }
    return generation;
}

void StoreOwner::tellThatFileRefused(const std::string& reason) const {
    postNotice("The list of items can't be kept in a file and stays in memory from now on: " + reason);
}

void StoreOwner::didSave(Generation& generation, const StoreChanges& changes) {
    StoreContext* context = generation.merging;
    if (!context || changes.committer == context)
        return;
    const std::lock_guard lock(context->mutex());
    context->merge(changes);
}

} // namespace tavrin
