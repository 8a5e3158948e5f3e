#pragma once

#include "store/queries/Predicate.h"
#include "store/rows/NodeRow.h"

namespace tavrin {

/// The settings that decide which rows take part.
struct ItemFilter {
    bool shouldProcessFiles = true;
    bool shouldProcessFolders = true;
    bool shouldProcessSubfolders = false;

    [[nodiscard]] bool admits(const NodeRow& row) const {
        return (row.treatAsFolder ? shouldProcessFolders : shouldProcessFiles) &&
               (shouldProcessSubfolders || row.root);
    }
};

/// The predicates that the filter settings stand for.
namespace FilterManager {

/// For passes that carry every type through.
inline Predicate currentFilterPredicateIncludingAllFilesAndFolders(const ItemFilter& filter) {
    return filter.shouldProcessSubfolders ? Predicate::always() : Predicate::isTrue(NodeKey::root);
}

/// What nobody has left out. Such rows are seen, but nothing of theirs counts except that their names are
/// taken.
inline constexpr Predicate ticked() { return Predicate::isFalse(NodeKey::leftOut); }

/// What the user sees.
inline Predicate currentFilterPredicate(const ItemFilter& filter) {
    const Predicate within = currentFilterPredicateIncludingAllFilesAndFolders(filter);
    if (!filter.shouldProcessFiles && !filter.shouldProcessFolders)
        return Predicate::never();
    if (!filter.shouldProcessFolders)
        return within.with(Predicate::isFalse(NodeKey::treatAsFolder));
    return filter.shouldProcessFiles ? within : within.with(Predicate::isTrue(NodeKey::treatAsFolder));
}

} // namespace FilterManager

} // namespace tavrin
