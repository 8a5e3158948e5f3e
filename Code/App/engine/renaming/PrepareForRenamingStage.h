#pragma once

#include "engine/naming/SiblingNames.h"
#include "engine/pipeline/ProcessingStage.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tavrin {

/// Works out the order of the renames: for each folder, which child waits for a name that a sibling still
/// holds, and how deep each item lies. Touches no file; what it finds stands in the rows.
class PrepareForRenamingStage final : public ProcessingStage {
  public:
    explicit PrepareForRenamingStage(EngineState& owner) : ProcessingStage(owner) {}

    bool process() override;
    [[nodiscard]] std::string className() const override { return "PrepareForRenamingStage"; }
    [[nodiscard]] std::string stageDescription() const override { return "Preparing for renaming stage..."; }

    /// The number of ancestors; -1 for no row. Needs a context.
    std::int32_t getDepthFor(RowId item);

  private:
    void prepareFolder(RowId folder);
    /// Writes the depth of all children; whether any of them is to get another name.
    bool setDepths(const std::vector<RowId>& children, std::int32_t depth);
    void linkSiblings(const std::vector<RowId>& children);
    /// Whether two of them are to bear names again that differ in case alone: case counts in their folder,
    /// and a name waits for no other spelling of it.
    bool wantNamesThatDifferInCase(const std::vector<RowId>& children);
    /// The sibling that holds the name that the item is to have; none for an item that keeps its name.
    RowId cannotBeRenamedBefore(RowId item);
    void setDepth(RowId id, std::int32_t depth);
    void commitNowAndThen();

    SiblingNames siblings;
    std::u16string finalName;
    std::string wantedName;
    std::string lowerCased;
    bool caseCounts = false;
    std::size_t changedRows = 0;
};

} // namespace tavrin
