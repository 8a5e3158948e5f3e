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
struct FilterManager {
    /// What the user sees and what counts.
    static Predicate currentFilterPredicate(const ItemFilter& filter);
    /// For passes that carry every type through.
    static Predicate currentFilterPredicateIncludingAllFilesAndFolders(const ItemFilter& filter);
};

} // namespace tavrin
