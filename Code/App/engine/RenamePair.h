#pragma once

#include "engine/RenameRun.h"

namespace tavrin {

/// Exchanges the names of two siblings that want each other's.
class RenamePair {
  public:
    explicit RenamePair(RenameRun& currentRun) : run(currentRun) {}

    void exchange(RowId item, RowId partner);

  private:
    bool swapNameAndName(const RenameItem& first, const RenameItem& second);

    RenameRun& run;
};

} // namespace tavrin
