#pragma once

#include "store/contexts/EngineControl.h"
#include "store/contexts/ProcessingError.h"
#include "store/queries/Predicate.h"
#include "store/rows/NodeRow.h"
#include "store/sources/SourceItem.h"
#include "support/values/PropertyValue.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>
#include <vector>

namespace tavrin {

struct RowBlock;

struct SourceItemInsertion {
    SourceItem item;
};
struct SourceItemDeletion {
    std::string path;
};
struct SourceItemReading {
    std::string path;
    bool readInRoot;
    bool readInSubfolders;
};
using SourceItemChange = std::variant<SourceItemInsertion, SourceItemDeletion, SourceItemReading>;

/// Everything that a context has changed and not yet committed.
struct StagedChanges {
    std::vector<RowBlock*> blocks; ///< those with changed rows, in ascending order; owned by the context
    std::unordered_map<RowId, PassMarker> marks;        ///< stage flags of rows that are in no block
    std::unordered_map<RowId, std::string> folderPaths; ///< of inserted rows that can have children
    std::vector<RowId> deletedTrees;
    std::vector<RowId> deletedNodes;                     ///< of a bulk deletion, in ascending order
    std::unordered_map<RowId, std::string> regexColumns; ///< as the segments hold them
    std::unordered_map<RowId, PropertyData> tagData;
    std::size_t tagBytes = 0; ///< of all tag data
    std::vector<SourceItemChange> sourceItems;
    std::vector<ProcessingError> insertedErrors;
    std::size_t deletedErrors = 0; ///< from the front
    std::optional<EngineControl> control;
    EngineControl controlAsRead;

    [[nodiscard]] bool isEmpty() const {
        return blocks.empty() && marks.empty() && deletedTrees.empty() && deletedNodes.empty() &&
               regexColumns.empty() && tagData.empty() && sourceItems.empty() && insertedErrors.empty() &&
               deletedErrors == 0 && (!control || *control == controlAsRead);
    }
};

} // namespace tavrin
