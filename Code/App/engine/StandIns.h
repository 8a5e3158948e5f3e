#pragma once

#include "store/NodeRow.h"

#include <string>

namespace tavrin {

class StoreContext;

/// The names under which items may lie for a moment in the middle of a run.
class StandIns {
  public:
    /// Chosen before the run; empty where the item needs none.
    const std::string& nameFor(StoreContext&, RowId) { return none; }

  private:
    std::string none;
};

} // namespace tavrin
