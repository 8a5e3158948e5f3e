#pragma once

#include "engine/pipeline/ProcessingStage.h"
#include "platform/files/FileSystem.h"
#include "store/rows/NodeRow.h"
#include "support/values/PropertyValue.h"

#include <memory>
#include <string>
#include <vector>

namespace tavrin {

/// Gives each new row the values that the sort orders go by: dates, size, shooting date. Once per row.
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
    void addSortingData(RowId id, const FileStatus& seen);
    /// The status of each item, neutral where it cannot be reached; of a remote disk many are asked for at a
    /// time.
    [[nodiscard]] std::vector<FileStatus> look(const std::vector<RowId>& items);
    [[nodiscard]] std::vector<FileStatus> lookInParallel(const std::vector<RowId>& items) const;
    FileStatus statusOf(RowId parent, const std::string& name);
    /// Has the folder open, if it can be opened.
    void openFolderOf(RowId parent);

    bool retrieveEXIFData = false;
    bool sumFolders = false;
    /// The folder of the last item, held open because the next is likely to lie there too.
    RowId openParent = noRow;
    std::unique_ptr<OpenFolder> openFolder;
};

} // namespace tavrin
