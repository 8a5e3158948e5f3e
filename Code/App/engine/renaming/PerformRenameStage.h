#pragma once

#include "engine/asking/UserQuestions.h"
#include "engine/history/TakeBack.h"
#include "engine/pipeline/ProcessingStage.h"
#include "store/queries/Predicate.h"
#include "store/rows/NodeRow.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

class LibraryWarnings;
class RenamesAhead;
class RunJournal;
struct RenameRun;

/// The stage that touches the disk: carries out the plan in the rows, deepest items first, and asks the user
/// on the way when the run is interactive. Before the first rename the whole plan is written into the
/// history.
class PerformRenameStage final : public ProcessingStage {
  public:
    explicit PerformRenameStage(EngineState& owner, std::shared_ptr<const RunPurpose> whatFor = nullptr);
    ~PerformRenameStage() override;

    bool process() override;
    void breakOff(const std::string& reason) override;
    [[nodiscard]] std::string className() const override { return "PerformRenameStage"; }
    [[nodiscard]] std::string stageDescription() const override { return "Performing renames..."; }

  private:
    [[nodiscard]] std::string recipeOfRun() const;
    /// False when the run is not to begin.
    bool beginJournal();
    void closeJournal(bool wasStopped);
    /// The rows that are to get another name.
    [[nodiscard]] Predicate plannedItems() const;
    void switchToLionModeOnce();
    void prepare();
    /// For each row of the list the planned one that stands for the same item.
    [[nodiscard]] std::optional<std::vector<RowId>> rowsOfList() const;
    void performBatch(const std::vector<RowId>& items);
    [[nodiscard]] bool mustStop(RowId id) const;
    void performItem(RowId id);
    void performWaitingItem(RowId id);
    /// Renames an item whose name to be is free, then the sibling that waits for the name it has left, and so
    /// on. A member that fails or is left out does not end the walk.
    void walkChain(RowId head);
    /// Whose head is the item in hand.
    void walkChainInHand();
    /// The item in hand; false when the run is to stop.
    bool performInChain(bool isHead, bool treatAsRoot);
    UserQuestions::Decision ask(bool isHead);
    void renameItem(bool treatAsRoot);
    /// The sibling whose name this item waits for, if it will still leave it.
    [[nodiscard]] RowId holderOfWantedName(RowId id);
    void setCounters();

    std::shared_ptr<const RunPurpose> purpose;
    std::unique_ptr<RunJournal> journal; ///< null where none is kept
    std::unique_ptr<RenameRun> run;      ///< the state of `process`, kept for breakOff
    std::unique_ptr<LibraryWarnings> warnings;
    std::unique_ptr<RenamesAhead> ahead;
};

} // namespace tavrin
