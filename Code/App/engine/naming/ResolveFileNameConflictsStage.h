#pragma once

#include "engine/naming/ProblemFinder.h"
#include "engine/pipeline/ProcessingStage.h"
#include "store/queries/Predicate.h"
#include "store/rows/NodeRow.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class NameTable;

/// Makes the final names of each folder distinct, apart from case, by a running number or letter in front of
/// the extension, unless the settings leave conflicts to be skipped or to stop the run; and foresees in the
/// same pass what the rename will refuse. Works once per set of read items.
class ResolveFileNameConflictsStage final : public ProcessingStage {
  public:
    enum class Task {
        resolve,
        foresee, ///< leaves all names as they are, and works each time
        lookAnew ///< the same, and also asks for each item whether it has been locked since it was read
    };
    explicit ResolveFileNameConflictsStage(EngineState& owner, Task whatToDo = Task::resolve)
        : ProcessingStage(owner), task(whatToDo) {}

    bool process() override;
    [[nodiscard]] std::string className() const override { return "ResolveFileNameConflictsStage"; }
    [[nodiscard]] std::string stageDescription() const override;

    /// Base 26 with "A" as zero and no leading zero: 25 is "Z", 26 is "BA". Not for negative numbers.
    static std::string uNumToAlpha(std::int64_t number);

  private:
    void takeSettings();
    void processFolder(NameTable& names, ProblemFinder& problems, RowId folder);
    void loadValuesForOrder(const std::vector<std::vector<RowId>>& groups);
    void resolveGroup(NameTable& names, std::vector<RowId> members);
    [[nodiscard]] bool isApplicable(RowId id);
    [[nodiscard]] bool isGhost(RowId id);
    [[nodiscard]] bool isFixed(RowId id);
    [[nodiscard]] std::u16string addDistinguisherToName(std::u16string_view name);
    [[nodiscard]] std::string nextDistinguisher();
    void storeCandidate(RowId id, const std::u16string& candidate);
    void countItems(std::size_t number);

    const Task task;
    ProblemFinder::Names resulting = ProblemFinder::Names::distinct;
    std::int32_t conflictCounter = 0; ///< within the group in hand
    std::int32_t scheme = 0;
    std::int32_t counter = 0;
    bool firstUnchanged = false;
    bool processFiles = true;
    bool processFolders = true;
    bool processSubfolders = false;
    std::vector<SortDescriptor> sortDescriptors;
    RowValues valuesForOrder = RowValues::none;
};

} // namespace tavrin
