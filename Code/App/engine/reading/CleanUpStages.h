#pragma once

#include "engine/pipeline/ProcessingStage.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tavrin {

/// Deletes all rows of one entity, batch by batch.
class CleanUpStage : public ProcessingStage {
  public:
    bool process() override;

  protected:
    using ProcessingStage::ProcessingStage;
    /// Deletes up to `limit` rows; the count deleted.
    virtual std::size_t deleteRows(std::size_t limit) = 0;
    [[nodiscard]] virtual std::string batchText(std::size_t count) const = 0;
};

class CleanUpProcessingErrorsStage final : public CleanUpStage {
  public:
    explicit CleanUpProcessingErrorsStage(EngineState& owner) : CleanUpStage(owner) {}
    [[nodiscard]] std::string className() const override { return "CleanUpProcessingErrorsStage"; }
    [[nodiscard]] std::string stageDescription() const override;

  protected:
    std::size_t deleteRows(std::size_t limit) override;
    [[nodiscard]] std::string batchText(std::size_t count) const override;
};

/// Takes from the list what is no longer there, and tells how many items these are if `isTold`. Before all
/// rows go.
class DropGoneItemsStage final : public ProcessingStage {
  public:
    DropGoneItemsStage(EngineState& owner, bool isTold) : ProcessingStage(owner), tells(isTold) {}
    bool process() override;
    [[nodiscard]] std::string className() const override { return "DropGoneItemsStage"; }
    [[nodiscard]] std::string stageDescription() const override;

  private:
    void lookInto(RowId folder);

    bool tells;
    std::size_t count = 0;
    std::vector<std::string> gone; ///< paths of source items
};

class CleanUpFilesStage final : public CleanUpStage {
  public:
    explicit CleanUpFilesStage(EngineState& owner) : CleanUpStage(owner) {}
    [[nodiscard]] std::string className() const override { return "CleanUpFilesStage"; }
    [[nodiscard]] std::string stageDescription() const override;

  protected:
    std::size_t deleteRows(std::size_t limit) override;
    [[nodiscard]] std::string batchText(std::size_t count) const override;
};

} // namespace tavrin
