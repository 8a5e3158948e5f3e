#pragma once

#include "engine/pipeline/ProcessingStage.h"

#include <string>
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
    void give(const GivenName& given);

    const GivenNames& names;
};

} // namespace tavrin
