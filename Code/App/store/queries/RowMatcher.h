#pragma once

#include "store/queries/Predicate.h"
#include "store/rows/RowSummary.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tavrin {

/// A predicate and an entity made ready for many rows: nearly all of it is a comparison of bits of the row's
/// summary and of its pass markers.
class RowMatcher {
  public:
    RowMatcher(FetchEntity entity, const Predicate& predicate);

    /// Whether the bits allow the row. What remains are the marker tests and `otherTests`.
    [[nodiscard]] bool matchesSummary(std::uint8_t summary) const {
        return summary != rowSummary::none && (summary & entityMask) != 0 && (summary & mask) == wanted;
    }
    [[nodiscard]] bool matchesMarkers(PassMarker stageFlag, PassMarker secondaryStageFlag) const {
        return (!notStageFlag || stageFlag != *notStageFlag) && (!isStageFlag || stageFlag == *isStageFlag) &&
               (!notSecondaryStageFlag || secondaryStageFlag != *notSecondaryStageFlag);
    }
    [[nodiscard]] bool matchesNothing() const { return impossible; }
    /// The row whose children alone match.
    [[nodiscard]] std::optional<RowId> parent() const { return wantedParent; }
    /// Tests that need the row's values.
    [[nodiscard]] const std::vector<Predicate::Test>& otherTests() const { return others; }
    /// The same without the marker tests, for lists that outlive a pass.
    [[nodiscard]] Predicate withoutMarkers() const { return unmarkedPredicate; }

  private:
    void addTest(const Predicate::Test& test);
    bool addSummaryTest(const Predicate::Test& test);
    bool addMarkerTest(const Predicate::Test& test);

    std::uint8_t entityMask = 0;
    std::uint8_t mask = 0;
    std::uint8_t wanted = 0;
    bool impossible = false;
    std::optional<PassMarker> notStageFlag, isStageFlag, notSecondaryStageFlag;
    std::optional<RowId> wantedParent;
    std::vector<Predicate::Test> others;
    Predicate unmarkedPredicate;
};

} // namespace tavrin
