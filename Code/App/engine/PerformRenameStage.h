#pragma once

#include "engine/ProcessingStage.h"
#include "store/NodeRow.h"
#include "store/Predicate.h"

#include <memory>
#include <string>

namespace tavrin {

class LibraryWarnings;
struct RenameRun;

/// The stage that touches the disk: carries out the plan in the rows, deepest items first, and asks the user
/// on the way when the run is interactive. There is no undo: what has been renamed stays renamed.
class PerformRenameStage final : public ProcessingStage {
  public:
    explicit PerformRenameStage(RenameEngine& owner);
    ~PerformRenameStage() override;

    bool process() override;
    [[nodiscard]] std::string className() const override { return "PerformRenameStage"; }
    [[nodiscard]] std::string stageDescription() const override { return "Performing renames..."; }

  private:
    void switchToLionModeOnce();
    void prepare();
    [[nodiscard]] FetchRequest openItems() const;
    bool performBatch(const FetchRequest& request);
    void performItem(RowId id);
    void performWaitingItem(RowId id);
    /// The sibling whose name this item waits for, if it will still leave it.
    [[nodiscard]] RowId holderOfWantedName(RowId id);
    void setCounters();

    std::unique_ptr<RenameRun> run; ///< the state of one `process`
    std::unique_ptr<LibraryWarnings> warnings;
};

} // namespace tavrin
