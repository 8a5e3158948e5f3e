#pragma once

#include "store/paging/TextRegion.h"
#include "store/rows/NodeRow.h"

#include <array>
#include <cstdint>
#include <utility>
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

} // namespace tavrin
