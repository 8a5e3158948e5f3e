#pragma once

#include "engine/renaming/RenameRun.h"

namespace tavrin {

/// Renames an item whose name to be is free, then the sibling that waits for the name it has left, and so on.
class RenameChain {
  public:
    explicit RenameChain(RenameRun& currentRun) : run(currentRun) {}

    /// A member that fails or is left out does not end the walk.
    void walk(RowId head);

  private:
    bool perform(bool isHead, bool treatAsRoot);
    UserQuestions::Decision ask(bool isHead);
    void rename(bool treatAsRoot);

    RenameRun& run;
};

} // namespace tavrin
