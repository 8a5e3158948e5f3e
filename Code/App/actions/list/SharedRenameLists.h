#pragma once

#include "actions/list/RenameList.h"
#include "platform/files/FileStatus.h"

#include <memory>
#include <optional>
#include <string>

namespace tavrin {

/// Lets the copies of an action that are made for each run use the list which the action itself has read, as
/// long as the file is the same one, unchanged. It keeps no list alive. Any thread.
class SharedRenameLists {
  public:
    /// A file as it was when its reading began.
    struct Source {
        std::string path;
        bool ignoreCase = false;
        FileStatus status;
        bool isSettled = false; ///< old enough that a change in between must show in its time
    };

    /// Absent where there is no such file.
    [[nodiscard]] static std::optional<Source> sourceFor(const std::string& path, bool ignoreCase);
    /// The list that was read from just that, or null.
    [[nodiscard]] static std::shared_ptr<const RenameList> find(const Source& source);
    /// Offers a list that has been read since `source` was asked for. Not taken when the file has changed.
    static void offer(const Source& source, const std::shared_ptr<const RenameList>& list);
};

} // namespace tavrin
