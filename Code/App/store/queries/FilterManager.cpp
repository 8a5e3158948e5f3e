#include "store/queries/FilterManager.h"

namespace tavrin {

namespace {

Predicate withinRoots(const Predicate& base, const ItemFilter& filter) {
    return filter.shouldProcessSubfolders ? base : base.with(Predicate::isTrue(NodeKey::root));
}

} // namespace

Predicate FilterManager::currentFilterPredicate(const ItemFilter& filter) {
    if (filter.shouldProcessFiles && filter.shouldProcessFolders)
        return withinRoots(Predicate::always(), filter);
    if (filter.shouldProcessFiles)
        return withinRoots(Predicate::isFalse(NodeKey::treatAsFolder), filter);
    if (filter.shouldProcessFolders)
        return withinRoots(Predicate::isTrue(NodeKey::treatAsFolder), filter);
    return withinRoots(Predicate::never(), filter);
}

Predicate FilterManager::currentFilterPredicateIncludingAllFilesAndFolders(const ItemFilter& filter) {
    return withinRoots(Predicate::always(), filter);
}

} // namespace tavrin
