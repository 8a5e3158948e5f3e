#pragma once

#include "actions/InputContext.h"
#include "engine/naming/NameTable.h"
#include "engine/naming/NamesBeforeStep.h"
#include "engine/pipeline/ProcessingStage.h"
#include "store/queries/Predicate.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavrin {

class BaseRenameAction;
class CompositeRenameAction;
class FileMO;

/// Runs the user's list of actions over all rows into `finalName` and `diff`: each row goes through one
/// action after the other, as far as the next one that must know the order of all rows. Works on a copy of
/// the list, so that the user may go on editing.
class ComputeProvisionalNamesStage final : public ProcessingStage {
  public:
    enum class Extent {
        allRows,
        /// Where many rows are new, those of them that come first in the list are named and shown, if their
        /// names can be told before all else is known. Afterwards all rows are to be named.
        firstNewRows
    };

    explicit ComputeProvisionalNamesStage(EngineState& owner, Extent extent = Extent::allRows);
    ~ComputeProvisionalNamesStage() override;

    /// False only when the run loop has ended, so that the list of actions can't be had.
    bool process() override;
    [[nodiscard]] std::string className() const override { return "ComputeProvisionalNamesStage"; }
    [[nodiscard]] std::string stageDescription() const override;

  private:
    /// An active step of the chain.
    struct Step {
        int index;
        BaseRenameAction* action;
    };
    using Steps = std::span<const Step>;

    bool copyActions();
    void prepareRows();
    void nameFirstRows();
    [[nodiscard]] bool canBeNamedEarly(Steps steps);
    /// Whether rows may come in another order when their dates and sizes have been read.
    [[nodiscard]] bool mayChange(const std::vector<SortDescriptor>& order);
    /// Finds those new rows which show first, and what shows around them.
    void chooseFirstRows();
    void processChosen(const std::vector<RowId>& rows);
    void showFirstRows();
    [[nodiscard]] std::vector<Step> activeSteps() const;
    /// How many of the first steps need not run, since their names are known; has them kept otherwise.
    std::size_t takeKnownNames(Steps steps);
    [[nodiscard]] NamesBeforeStep::Origin originOf(Steps steps) const;
    /// The order that the step wants its rows in.
    [[nodiscard]] FetchRequest rowsFor(const Step& step) const;
    void keepNames(Steps before);
    void processSteps(Steps steps);
    void processByFolder(FetchRequest request);
    /// The rows in the order of their ranks.
    void processAll(const FetchRequest& request);
    void processRows(const std::vector<RowId>& rows);
    void processByRank(const std::vector<RowId>& rows);
    /// Whether steps name the row. All others keep their names and take no rank.
    [[nodiscard]] bool isProcessed(RowId id) const { return processed[id]; }
    void findProcessedRows();
    /// Skipped rows have no use for the rank.
    void processRow(RowId id, std::int32_t rank);
    /// Makes `output.newName` of the name up to now.
    void runSteps(RowId id, std::int32_t rank);
    void noteUnreadMetadata(RowId id, const Step& step, const std::string& reason);
    void tellUnreadMetadata();
    void storeNewName(RowId id);
    void keepName(RowId id);
    void setDiff(RowId id, bool differs);
    void copyCurrentToNewName();

    const Extent extent;
    std::optional<FetchRequest> shownList; ///< where first rows are wanted
    std::vector<bool> chosen;              ///< by id; empty where all are named
    bool isFirstPass = true;
    Predicate filter;
    std::unique_ptr<CompositeRenameAction> compositeAction;
    std::vector<std::string> lostSteps; ///< why those of them fail that worked for the user

    /// The rows whose metadata could not be read, each counted once however many steps ask for it.
    struct {
        std::vector<bool> rows;
        std::size_t count = 0;
        RowId first = noRow;
        int step = 0;       ///< the earliest that asked in vain
        std::string reason; ///< of the first row that it asked for
    } unread;
    std::vector<bool> processed; ///< by id

    NamesBeforeStep* known = nullptr; ///< the names that the first pass begins with, where they are known
    std::size_t nextKnown = 0;
    NamesBeforeStep* kept = nullptr; ///< gets the names that the step makes, where they are to be kept
    int keptStep = 0;

    NameTable::Hashes hashes; ///< of the new names, by id
    CaselessHash hasher;

    // The pass in hand, and the buffers that serve for all its rows.
    Steps pass;
    bool isLastPass = false;
    std::int32_t count = 0;
    std::unique_ptr<FileMO> file;
    std::u16string ownName;    ///< of the item
    std::u16string nameBefore; ///< that the pass begins with
    InputContext input;
    OutputContext output;
};

} // namespace tavrin
