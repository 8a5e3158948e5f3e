#include "store/contexts/StoreContext.h"
#include "store/contexts/StoreContextImpl.h"

#include <algorithm>
#include <utility>

// The small entities of a context: counters, source items, errors.

namespace tavrin {

EngineControl& StoreContext::changeEngineControl() {
    if (!impl->staged.control) {
        impl->staged.controlAsRead = impl->store.access()->control;
        impl->staged.control = impl->staged.controlAsRead;
    }
    return *impl->staged.control;
}

const EngineControl& StoreContext::engineControl() {
    if (impl->staged.control && *impl->staged.control != impl->staged.controlAsRead)
        return *impl->staged.control;
    impl->controlForReading = impl->store.access()->control;
    return impl->controlForReading;
}

// Staged changes are committed one by one in practice, so the copy is rarely made.
template <typename Ask> auto StoreContext::Impl::askSourceItems(Ask ask) {
    const ItemStore::Access inside = store.access();
    if (staged.sourceItems.empty())
        return ask(inside->sourceItems);
    SourceItemTable table = inside->sourceItems;
    for (const SourceItemChange& change : staged.sourceItems)
        table.apply(change);
    return ask(table);
}

std::vector<SourceItem> StoreContext::sourceItems() {
    return impl->askSourceItems([](const SourceItemTable& items) { return items.inOrderAdded(); });
}

std::size_t StoreContext::sourceItemCount() {
    return impl->askSourceItems([](const SourceItemTable& items) { return items.count(); });
}

bool StoreContext::hasSourceItem(std::string_view path) {
    return impl->askSourceItems([path](const SourceItemTable& items) { return items.contains(path); });
}

std::size_t StoreContext::removedSourceItems() { return impl->store.access()->sourceItems.removals(); }

bool StoreContext::hasSourceItemBelow(std::string_view folder) {
    return impl->askSourceItems([folder](const SourceItemTable& items) { return items.hasBelow(folder); });
}

void StoreContext::insertSourceItem(std::string path, bool treatAsFolder, std::uint32_t look) {
    impl->staged.sourceItems.emplace_back(
        SourceItemInsertion{{std::move(path), treatAsFolder, false, false, look}});
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
    const ItemStore::Access inside = impl->store.access();
    const auto& kept = inside->errors;
    const std::size_t skipped = std::min(impl->staged.deletedErrors, kept.size());
    std::vector<ProcessingError> errors(kept.begin() + static_cast<std::ptrdiff_t>(skipped), kept.end());
    errors.insert(errors.end(), impl->staged.insertedErrors.begin(), impl->staged.insertedErrors.end());
    return errors;
}

std::size_t StoreContext::deleteProcessingErrors(std::size_t limit) {
    const ItemStore::Access inside = impl->store.access();
    const std::size_t left =
        inside->errors.size() - std::min(impl->staged.deletedErrors, inside->errors.size());
    const std::size_t count = std::min(limit, left);
    impl->staged.deletedErrors += count;
    return count;
}

} // namespace tavrin
