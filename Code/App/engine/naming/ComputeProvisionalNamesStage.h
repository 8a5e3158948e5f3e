#pragma once

#include "actions/InputContext.h"
#include "engine/pipeline/ProcessingStage.h"
#include "store/queries/Predicate.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavrin {

class BaseRenameAction;
class CompositeRenameAction;
class FileMO;

/// Runs the user's list of actions over all rows, action by action, into `finalName` and `diff`. Works on a
/// copy of the list, so that the user may go on editing.
class ComputeProvisionalNamesStage final : public ProcessingStage {
  public:
    explicit ComputeProvisionalNamesStage(EngineState& owner);
    ~ComputeProvisionalNamesStage() override;

    /// False only when the run loop has ended, so that the list of actions can't be had.
    bool process() override;
    [[nodiscard]] std::string className() const override { return "ComputeProvisionalNamesStage"; }
    [[nodiscard]] std::string stageDescription() const override;

  private:
    bool copyActions();
    void processForActionIndex(int index);
    /// Points the request at the next folder; false when all folders are done.
    bool moveToNextFolder(FetchRequest& request);
    /// How many of the rows get a rank.
    [[nodiscard]] std::int32_t countNumbered(const std::vector<RowId>& rows) const;
    void processByRank(const std::vector<RowId>& rows);
    /// Whether steps name the row. All others keep their names and take no rank.
    [[nodiscard]] bool isProcessed(RowId id) const;
    /// Skipped rows have no use for the rank.
    void processRow(RowId id, std::int32_t rank);
    void runAction(RowId id);
    void noteUnreadMetadata(RowId id, const std::string& reason);
    void tellUnreadMetadata();
    /// `output.newName` becomes the final name of a row whose name up to now is `input.currentName`.
    void storeNewName(RowId id);
    void setDiff(RowId id, bool differs);
    void copyCurrentToNewName();

    bool processFiles = true;
    bool processFolders = true;
    bool isFirstAppliedAction = true;
    Predicate filter;
    std::unique_ptr<CompositeRenameAction> compositeAction;
    std::vector<std::string> lostSteps; ///< why those of them fail that worked for the user

    /// The rows whose metadata could not be read, each counted once however many steps ask for it.
    struct {
        std::vector<bool> rows;
        std::size_t count = 0;
        RowId first = noRow;
        std::string reason; ///< of the first
    } unread;

    // The pass in hand, and the buffers that serve for all its rows.
    BaseRenameAction* action = nullptr;
    PassMarker marker = unmarked;
    std::int32_t count = 0;
    std::unique_ptr<FileMO> file;
    InputContext input;
    OutputContext output;
    std::u16string nameBuffer;
};

} // namespace tavrin
