#pragma once

#include "engine/pipeline/ProcessingStage.h"
#include "store/rows/NodeRow.h"
#include "support/values/PropertyValue.h"

#include <string>

namespace tavrin {

/// Gives the rows those values that the run goes by: dates, size, shooting date. Each once per row, when a
/// step, the order of the list, or what is foreseen of the rename wants it for the first time.
class AddFileSortingDataStage final : public ProcessingStage {
  public:
    explicit AddFileSortingDataStage(EngineState& owner) : ProcessingStage(owner) {}

    bool process() override;
    [[nodiscard]] std::string className() const override { return "AddFileSortingDataStage"; }
    [[nodiscard]] std::string stageDescription() const override;

    /// The value that a sort setting goes by: a text (name, size, natural name, random) or a number of
    /// seconds since 2001-01-01 UTC. Settings come in pairs, ascending and descending, with one value;
    /// "cheers" for one outside 0 to 12. Follows the settings of the last `process`.
    [[nodiscard]] PropertyValue getSortingValueForPath(const std::string& path, int andSetting) const;
    /// A new random UUID (RFC 4122, version 4) in its usual text form.
    static std::string createUUID();
    /// Seconds since 2001 as "%020.4lf".
    static std::string formatDate(double date);

  private:
    /// By the chain of the moment. One that is edited before its names are made is previewed once more.
    [[nodiscard]] RowValues valuesNeeded() const;

    bool retrieveEXIFData = false;
    bool sumFolders = false;
};

} // namespace tavrin
