#pragma once

#include "engine/history/RunRecord.h"
#include "store/rows/NodeRow.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace tavrin {

/// Where a program keeps the records of its runs, and how it is called in them.
struct HistoryPlace {
    std::string folder; ///< a path in bytes; empty: no records are kept
    std::string who = "tvrn";
};

/// What a run is for, and what follows for the way it is done and recorded.
struct RunPurpose {
    RunKind what = RunKind::rename;
    std::string of; ///< the name of the run that it takes back or finishes
    /// Every row takes part, whatever the settings say, and an item that is not the one that its row knows is
    /// left alone.
    bool isStrict = false;
    /// Whether each step is asked about; by the settings where absent.
    std::optional<bool> asks;
    /// Items that could not be made rows.
    std::int64_t failedBefore = 0;
    /// The names that items had before the run that this one takes up, for rows that lie elsewhere now.
    std::map<RowId, std::string> formerNames;
    /// Calls with each item that needs no row, since it has got its name before; their folders count by path.
    std::function<void(const std::function<void(const std::string& folder, const RecordedItem&)>&)> visitDone;
};

} // namespace tavrin
