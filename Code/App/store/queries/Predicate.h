#pragma once

#include "store/rows/NodeKey.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tavrin {

/// A pass marker "00" to "99" as a number; `unmarked` stands for "never set".
using PassMarker = std::uint8_t;
inline constexpr PassMarker unmarked = 255;

/// Which rows a fetch yields: `node` means those of both sub-entities.
enum class FetchEntity : std::uint8_t {
    file = rowSummary::isFile,
    ghostNode = rowSummary::isGhostNode,
    node = file | ghostNode,
};

/// The conditions of a fetch, all of which must hold: bits of the row's summary, its pass markers, its
/// folder. A small value; compares equal when it asks the same.
class Predicate {
  public:
    static constexpr Predicate always() { return {}; }
    static constexpr Predicate never() {
        Predicate predicate;
        predicate.impossible = true;
        return predicate;
    }
    /// Only for keys with a bit in the summary; others do not compile.
    static consteval Predicate isTrue(NodeKey key) { return ofBit(key, true); }
    static consteval Predicate isFalse(NodeKey key) { return ofBit(key, false); }
    /// Rows whose `stageFlag` is another one, or was never set.
    static constexpr Predicate notMarked(PassMarker marker) {
        Predicate predicate;
        predicate.notStageFlag = marker;
        return predicate;
    }
    /// The same of `secondaryStageFlag`.
    static constexpr Predicate notSecondaryMarked(PassMarker marker) {
        Predicate predicate;
        predicate.notSecondaryStageFlag = marker;
        return predicate;
    }
    /// The children of a folder, of which a fetch takes what is committed.
    static constexpr Predicate hasParent(RowId row) {
        Predicate predicate;
        predicate.wantedParent = row;
        return predicate;
    }

    /// Both conditions together; of two markers or two folders the other's.
    [[nodiscard]] constexpr Predicate with(const Predicate& other) const {
        Predicate both = *this;
        both.impossible |= other.impossible || (mask & other.mask & (wanted ^ other.wanted)) != 0;
        both.mask |= other.mask;
        both.wanted |= other.wanted;
        if (other.notStageFlag)
            both.notStageFlag = other.notStageFlag;
        if (other.notSecondaryStageFlag)
            both.notSecondaryStageFlag = other.notSecondaryStageFlag;
        if (other.wantedParent)
            both.wantedParent = other.wantedParent;
        return both;
    }
    /// The same for lists that outlive a pass.
    [[nodiscard]] constexpr Predicate withoutMarkers() const {
        Predicate predicate = *this;
        predicate.notStageFlag = predicate.notSecondaryStageFlag = std::nullopt;
        return predicate;
    }

    [[nodiscard]] constexpr bool matchesNothing() const { return impossible; }
    [[nodiscard]] constexpr bool matchesSummary(FetchEntity entity, std::uint8_t summary) const {
        return (summary & static_cast<std::uint8_t>(entity)) != 0 && (summary & mask) == wanted;
    }
    [[nodiscard]] constexpr bool matchesMarkers(PassMarker stageFlag, PassMarker secondaryStageFlag) const {
        return (!notStageFlag || stageFlag != *notStageFlag) &&
               (!notSecondaryStageFlag || secondaryStageFlag != *notSecondaryStageFlag);
    }
    [[nodiscard]] constexpr std::optional<RowId> parent() const { return wantedParent; }
    /// What a change can make other rows match: a union of ColumnClass.
    [[nodiscard]] constexpr std::uint8_t columnClasses() const {
        std::uint8_t classes = 0;
        for (const NodeAttribute& attribute : nodeAttributes) {
            if ((attribute.summaryBit & mask) != 0)
                classes |= static_cast<std::uint8_t>(attribute.columnClass);
        }
        return classes;
    }
    bool operator==(const Predicate&) const = default;

  private:
    static consteval Predicate ofBit(NodeKey key, bool isSet) {
        Predicate predicate;
        predicate.mask = attribute(key).summaryBit;
        predicate.wanted = isSet ? predicate.mask : 0;
        if (predicate.mask == 0)
            throw "rows are not filtered by this key";
        return predicate;
    }

    std::uint8_t mask = 0;
    std::uint8_t wanted = 0;
    bool impossible = false;
    std::optional<PassMarker> notStageFlag, notSecondaryStageFlag;
    std::optional<RowId> wantedParent;
};

/// One key of a sort order.
struct SortDescriptor {
    NodeKey key;
    bool ascending = true;
    bool operator==(const SortDescriptor&) const = default;
};

/// A fetch from the rows. Without a sort order rows come by id, that is, in reading order; behind every sort
/// order the last key is `manualOrder`. Limit 0 means all.
struct FetchRequest {
    FetchEntity entity = FetchEntity::file;
    Predicate predicate;
    std::vector<SortDescriptor> order;
    std::size_t limit = 0;
    bool readById = false; ///< the rows are going to be read by ascending id, whatever their order here
};

} // namespace tavrin
