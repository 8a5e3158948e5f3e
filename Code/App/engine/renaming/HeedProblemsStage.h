#pragma once

#include "engine/pipeline/ProcessingStage.h"
#include "store/rows/NodeRow.h"

#include <string>
#include <vector>

namespace tavrin {

/// In front of a rename that does not make names distinct: tells which items are left out, or ends the run
/// before it begins where a problem is foreseen.
class HeedProblemsStage final : public ProcessingStage {
  public:
    explicit HeedProblemsStage(EngineState& owner) : ProcessingStage(owner) {}

    bool process() override;
    [[nodiscard]] std::string className() const override { return "HeedProblemsStage"; }
    [[nodiscard]] std::string stageDescription() const override { return "Looking for problems..."; }

  private:
    void tell(const std::vector<RowId>& rows);
};

} // namespace tavrin
