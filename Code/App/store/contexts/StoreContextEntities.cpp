#include "store/contexts/StoreContext.h"
#include "store/contexts/StoreContextImpl.h"

#include <algorithm>
#include <utility>

// The small entities of a context: counters, source items, errors.

namespace tavrin {

EngineControl& StoreContext::changeEngineControl() {
    if (!impl->staged.control) {
        std::scoped_lock lock(impl->store.mutex);
        impl->staged.control = impl->store.control;
        impl->staged.controlAsRead = impl->store.control;
    }
    return *impl->staged.control;
}

const EngineControl& StoreContext::engineControl() {
    if (impl->staged.control && *impl->staged.control != impl->staged.controlAsRead)
        return *impl->staged.control;
    std::scoped_lock lock(impl->store.mutex);
    impl->controlForReading = impl->store.control;
    return impl->controlForReading;
}

std::vector<SourceItem> StoreContext::sourceItems() {
    std::scoped_lock lock(impl->store.mutex);
    if (impl->staged.sourceItems.empty())
        return impl->store.sourceItems.inOrderAdded();
    return impl->sourceItemsWithStaged().inOrderAdded();
}

std::size_t StoreContext::sourceItemCount() {
    std::scoped_lock lock(impl->store.mutex);
    if (impl->staged.sourceItems.empty())
        return impl->store.sourceItems.count();
    return impl->sourceItemsWithStaged().count();
}

std::optional<SourceItem> StoreContext::sourceItemWithPath(std::string_view path) {
    std::scoped_lock lock(impl->store.mutex);
    if (impl->staged.sourceItems.empty())
        return impl->store.sourceItems.find(path);
    return impl->sourceItemsWithStaged().find(path);
}

std::size_t StoreContext::sourceItemCountBelow(std::string_view folder) {
    std::scoped_lock lock(impl->store.mutex);
    if (impl->staged.sourceItems.empty())
        return impl->store.sourceItems.countBelow(folder);
    return impl->sourceItemsWithStaged().countBelow(folder);
}

// Staged changes are committed one by one in practice, so the copy is rarely made.
SourceItemTable StoreContext::Impl::sourceItemsWithStaged() const {
    SourceItemTable table = store.sourceItems;
    for (const SourceItemChange& change : staged.sourceItems)
        table.apply(change);
    return table;
}

void StoreContext::insertSourceItem(std::string path, bool treatAsFolder) {
    impl->staged.sourceItems.emplace_back(
        SourceItemInsertion{{std::move(path), treatAsFolder, false, false}});
}

void StoreContext::deleteSourceItem(std::string_view path) {
    impl->staged.sourceItems.emplace_back(SourceItemDeletion{std::string(path)});
}

void StoreContext::setSourceItemRead(std::string_view path, bool readInRoot, bool readInSubfolders) {
    impl->staged.sourceItems.emplace_back(SourceItemReading{std::string(path), readInRoot, readInSubfolders});
}

void StoreContext::insertProcessingError(ProcessingError error) {
    impl->staged.insertedErrors.push_back(std::move(error));
}

std::vector<ProcessingError> StoreContext::processingErrors() {
    std::scoped_lock lock(impl->store.mutex);
    const auto& kept = impl->store.errors;
    const std::size_t skipped = std::min(impl->staged.deletedErrors, kept.size());
    std::vector<ProcessingError> errors(kept.begin() + static_cast<std::ptrdiff_t>(skipped), kept.end());
    errors.insert(errors.end(), impl->staged.insertedErrors.begin(), impl->staged.insertedErrors.end());
    return errors;
}

std::size_t StoreContext::deleteProcessingErrors(std::size_t limit) {
    std::scoped_lock lock(impl->store.mutex);
    const std::size_t left =
        impl->store.errors.size() - std::min(impl->staged.deletedErrors, impl->store.errors.size());
    const std::size_t count = std::min(limit, left);
    impl->staged.deletedErrors += count;
    return count;
}

} // namespace tavrin
