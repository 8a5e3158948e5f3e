#pragma once

#include "engine/history/RunHistory.h"
#include "store/contexts/SmallEntities.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavrin {

class ItemStore;

/// What undo and redo are to do.
struct TakeBackRequest {
    ChosenRun chosen;
    bool takesReplaced = false; ///< items that lie where a recorded one is gone count as that one
    bool asks = false;          ///< before each step
    bool isPreview = false;     ///< finds out what would be done, and touches nothing
};

/// What came of it.
struct TakeBackResult {
    std::shared_ptr<ItemStore> store; ///< the rows: those with `diff` get, or were to get, another name
    std::int32_t planned = 0;
    std::int32_t changed = 0;
    std::int64_t failed = 0;             ///< items that stay as they are, those told on the way included
    std::vector<ProcessingError> errors; ///< what can't be done, apart from what was told on the way
};

} // namespace tavrin
