#pragma once

#include "engine/pipeline/ProcessingStage.h"
#include "platform/files/FileSystem.h"
#include "store/rows/NodeRow.h"

#include <memory>
#include <string>

namespace tavrin {

/// Gives each new row the values that the sort orders go by: dates, size, shooting date. Once per row.
class AddFileSortingDataStage final : public ProcessingStage {
  public:
    explicit AddFileSortingDataStage(EngineState& owner) : ProcessingStage(owner) {}

    bool process() override;
    [[nodiscard]] std::string className() const override { return "AddFileSortingDataStage"; }
    [[nodiscard]] std::string stageDescription() const override;

  private:
    void addSortingData(RowId id);
    /// The item's status, neutral where it cannot be reached.
    FileStatus statusOf(RowId parent, const std::string& name);

    bool retrieveEXIFData = false;
    bool sumFolders = false;
    /// The folder of the last item, held open because the next is likely to lie there too.
    RowId openParent = noRow;
    std::unique_ptr<OpenFolder> openFolder;
};

} // namespace tavrin
