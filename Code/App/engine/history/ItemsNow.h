#pragma once

#include "engine/history/JournalPlaces.h"
#include "engine/history/RunHistory.h"

#include <cstdint>
#include <functional>
#include <string>

namespace tavrin {

/// What has become of a recorded item: as `ItemPlace`, and that a later run has given it yet another name.
enum class ItemNow : std::uint8_t { done, standIn, old, replaced, gone, unclear, renamed };

struct WhereNow {
    ItemNow now = ItemNow::gone;
    std::string name;     ///< the one that it bears; empty where that is not known
    std::string laterRun; ///< the one that has renamed it
};

/// Finds out what has become of the items of a past run, by the disk and by what later runs have done.
/// Touches nothing. Any one thread.
class ItemsNow {
  public:
    /// `record` is that of the run, and has been examined.
    ItemsNow(RunRecordReader& record, const PastRun& run);

    void breakOffWhen(std::function<bool()> condition) { places.breakOffWhen(std::move(condition)); }
    /// Calls with each item in the order of the record.
    void visit(const std::function<void(const PlacedItem&, const WhereNow&)>& visitor);

  private:
    [[nodiscard]] WhereNow whereNow(const PlacedItem& placed);

    JournalPlaces places;
    RenamedAgain renamedAgain;
};

} // namespace tavrin
