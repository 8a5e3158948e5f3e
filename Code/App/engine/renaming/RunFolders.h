#pragma once

#include "platform/files/FileSystem.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>

namespace tavrin {

/// The folders in which a run renames, each held open and each the very one that was read: what has taken a
/// folder's place since then, a link most of all, is not touched. Worker thread only.
class RunFolders {
  public:
    /// Whether names that differ in case alone are one name in a folder.
    enum class CaseRule { unknown, counts, ignored };

    struct Place {
        std::unique_ptr<OpenFolder> folder; ///< null when there is an error
        int error = 0;                      ///< of the system; ESTALE when it is not the folder that was read
        FileIdentity identity;
        CaseRule caseRule = CaseRule::unknown;
        /// Asked at each call; zeros where it can't be.
        [[nodiscard]] VolumeFacts volume() const;
    };

    explicit RunFolders(FileSystem& disk);

    /// The folder at the path, which the row stands for. Valid until the next call.
    Place& at(RowId row, const std::string& path, const FileIdentity& asRead);

  private:
    void open(Place& place, const std::string& path, const FileIdentity& asRead);

    FileSystem& fileSystem;
    const std::size_t mostOpen;
    std::unordered_map<RowId, Place> places;
};

} // namespace tavrin
