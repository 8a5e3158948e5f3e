#pragma once

#include "engine/naming/NamePins.h"
#include "engine/pipeline/EngineState.h"
#include "engine/pipeline/ProcessingStage.h"
#include "store/rows/NodeRow.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavrin {

/// A name that somebody has chosen for one item, in the bytes of the file system.
struct GivenName {
    std::string path; ///< of the item
    std::string name;
};
using GivenNames = std::vector<GivenName>;

/// Gives rows the names that were chosen for them, byte by byte; all others keep theirs. In place of the
/// chain.
class GiveNamesStage final : public ProcessingStage {
  public:
    /// `chosenNames` outlives the stage.
    GiveNamesStage(EngineState& owner, const GivenNames& chosenNames)
        : ProcessingStage(owner), names(chosenNames) {}

    bool process() override;
    [[nodiscard]] std::string className() const override { return "GiveNamesStage"; }
    [[nodiscard]] std::string stageDescription() const override { return "Taking over new file names..."; }

  private:
    void keepAllNames();

    const GivenNames& names;
};

/// Marks the rows that are left out, before anything is made of the others.
class LeaveOutStage final : public ProcessingStage {
  public:
    LeaveOutStage(EngineState& owner, NamePins ofRun) : ProcessingStage(owner), pins(std::move(ofRun)) {}

    bool process() override;
    [[nodiscard]] std::string className() const override { return "LeaveOutStage"; }

  private:
    const NamePins pins;
};

/// Puts names by hand in the place of those that the steps have made, and forgets what is settled for items
/// that are not on the list any more.
class PinNamesStage final : public ProcessingStage {
  public:
    PinNamesStage(EngineState& owner, NamePins ofRun) : ProcessingStage(owner), pins(std::move(ofRun)) {}

    bool process() override;
    [[nodiscard]] std::string className() const override { return "PinNamesStage"; }

  private:
    void pin(RowId id, const std::string& path, const std::string& name);
    /// Whether nothing can come of what is settled for the path, of which there is no row.
    [[nodiscard]] bool isOver(const std::string& path);

    const NamePins pins;
    std::shared_ptr<EngineState::ComputedNames> computed;
};

} // namespace tavrin
