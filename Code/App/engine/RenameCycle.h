#pragma once

#include "engine/RenameRun.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace tavrin {

/// Breaks a cycle of names: all children of the folder go to temporary names, then each to its own.
class RenameCycle {
  public:
    explicit RenameCycle(RenameRun& currentRun) : run(currentRun) {}

    /// `item` is a member of the cycle.
    void resolve(RowId item);

  private:
    /// A child of the folder, and what lies under its temporary name; absent when it has none.
    struct Child {
        RowId id;
        bool isTemporary = false;
        std::optional<FileIdentity> identity;
    };

    void renameToTemporary(Child& child);
    void renameToFinal(const Child& child);
    [[nodiscard]] std::string temporaryName() const;

    RenameRun& run;
    RenameItem& item{run.item};
};

} // namespace tavrin
