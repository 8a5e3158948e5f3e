#pragma once

#include "documents/Settings.h"
#include "platform/files/FileSystem.h"
#include "store/rows/NodeRow.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace tavrin {

class EngineState;
class FolderNotes;
class ProgressInfo;
class StoreContext;

/// Asks the disk for those values of rows that are wanted and not there yet: dates, size, shooting date.
/// Worker threads, under the engine's lock.
class RowValueLoader {
  public:
    /// `ofRun` says whether there are shooting dates, and sizes of folders; `info` may be null.
    RowValueLoader(EngineState& engine, StoreContext& rows, const Settings& ofRun, ProgressInfo* info);

    /// How many of the rows lacked one of the values. They are staged. An item that can't be reached has
    /// neutral ones.
    std::size_t load(std::span<const RowId> rows, RowValues needed);

  private:
    void loadFromItem(RowId id, RowValues missing);
    /// The status of each item, neutral where it cannot be reached; of a remote disk many are asked for at a
    /// time.
    [[nodiscard]] std::vector<FileStatus> look(const std::vector<RowId>& items);
    [[nodiscard]] std::vector<FileStatus> lookInParallel(const std::vector<RowId>& items) const;
    FileStatus statusOf(RowId parent, const std::string& name);
    /// Has the folder open, if it can be opened.
    void openFolderOf(RowId parent);

    StoreContext& context;
    FolderNotes& notes;
    const Settings settings;
    ProgressInfo* const progress;
    /// The folder of the last item, held open because the next is likely to lie there too.
    RowId openParent = noRow;
    std::unique_ptr<OpenFolder> openFolder;
};

} // namespace tavrin
