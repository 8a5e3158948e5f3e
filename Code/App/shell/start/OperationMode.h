#pragma once

namespace tavrin {

/// How this process runs; decided once at the start.
enum class OperationMode : int {
    normal = 0,
    dropletRun = 1,  ///< a droplet was given files: rename and quit, without a window
    dropletEdit = 2, ///< a droplet was opened: the settings go back into it
};

} // namespace tavrin
