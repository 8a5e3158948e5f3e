#pragma once

#include "engine/history/RunHistory.h"
#include "store/contexts/SmallEntities.h"
#include "store/rows/NodeRow.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

class ItemStore;

/// What a run is for, and what follows for the way it is done and recorded.
struct RunPurpose {
    RunKind what = RunKind::rename;
    std::string of; ///< the name of the run that it takes back or finishes
    /// Every row takes part, whatever the settings say, and an item that is not the one that its row knows is
    /// left alone.
    bool isStrict = false;
    /// Links are renamed themselves, instead of being refused.
    bool linksAreItems = false;
    /// Whether each step is asked about; by the settings where absent.
    std::optional<bool> asks;
    /// Items that could not be made rows.
    std::int64_t failedBefore = 0;
    /// What becomes of the items is told to the list too, which has rows of its own.
    bool isOnList = false;
    /// The names that items had before the run that this one takes up, for rows that lie elsewhere now.
    std::map<RowId, std::string> formerNames;
    /// Calls with each item that needs no row, since it has got its name before; their folders count by path.
    std::function<void(const std::function<void(const std::string& folder, const RecordedItem&)>&)> visitDone;
};

/// What undo and redo are to do.
struct TakeBackRequest {
    /// How far to go: find out what would be done, and touch nothing; do it unless something has to be left
    /// out; or do what can be done.
    enum class Extent : std::uint8_t { look, allOrNothing, whatCan };

    ChosenRun chosen;
    Extent extent = Extent::whatCan;
    bool takesReplaced = false; ///< items that lie where a recorded one is gone count as that one
    bool asks = false;          ///< before each step
    /// What becomes of each item is wanted beside the result, and finding out shows itself as a run does.
    bool isOnShow = false;
};

/// What came of it.
struct TakeBackResult {
    ChosenRun chosen;
    std::shared_ptr<ItemStore> store; ///< the rows: those with `diff` get, or were to get, another name
    bool wasDone = false;             ///< else it was only found out what would be done, as far as it came
    std::int32_t planned = 0;
    std::int32_t changed = 0;
    std::int64_t failed = 0;             ///< items that stay as they are, those told on the way included
    std::vector<ProcessingError> errors; ///< what can't be done, apart from what was told on the way
};

} // namespace tavrin
