#pragma once

#include "store/contexts/SmallEntities.h"
#include "store/paging/TextRegion.h"
#include "store/queries/Predicate.h"
#include "store/rows/NodeRow.h"
#include "support/values/PropertyValue.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

namespace tavrin {

/// A context's own copy of 256 consecutive rows, with the changes that it has staged in them.
struct RowBlock {
    static constexpr std::size_t capacity = 256;
    static constexpr std::uint32_t number(RowId id) { return id / capacity; }
    static constexpr std::size_t index(RowId id) { return id % capacity; }

    enum Change : std::uint8_t {
        attributes = 1,
        finalName = 2,
        stageFlag = 4,
        secondaryStageFlag = 8,
        inserted = 16,
        deleted = 32,
    };

    RowId first = noRow;
    std::array<NodeRow, capacity> rows;
    std::array<std::uint8_t, capacity> stageFlags;
    std::array<std::uint8_t, capacity> secondaryStageFlags;
    TextRegion names;
    TextRegion finals;
    bool hasNames = false;
    bool hasFinals = false;
    std::array<std::uint8_t, capacity> changes{};
    std::size_t changedRows = 0;
    /// The rows with changed attributes as they were read, by index in the block.
    std::vector<std::pair<std::uint8_t, NodeRow>> originals;
    std::uint64_t lastUse = 0;

    /// Notes a change; true for the first one of the row.
    bool note(std::size_t index, std::uint8_t change) {
        const bool isFirst = changes[index] == 0;
        changes[index] |= change;
        changedRows += isFirst ? 1 : 0;
        return isFirst;
    }
    void forgetChanges() {
        if (changedRows > 0)
            changes.fill(0);
        changedRows = 0;
        originals.clear();
    }
};

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
    std::unordered_set<std::uint32_t> segments;         ///< those of the blocks
    std::unordered_map<RowId, PassMarker> marks;        ///< stage flags of rows that are in no block
    std::unordered_map<RowId, std::string> folderPaths; ///< of inserted rows that can have children
    std::unordered_map<std::string, RowId> foldersByPath;
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
