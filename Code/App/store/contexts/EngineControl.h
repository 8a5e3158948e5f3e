#pragma once

#include <cstdint>

namespace tavrin {

/// The one row of counters of the run.
struct EngineControl {
    std::int32_t totalNumberOfFiles = 0;
    std::int32_t totalNumberOfFilesSelectedOrNot = 0;
    std::int32_t numberOfFilesThatNeedRenaming = 0;
    std::int32_t numberOfFolders = 0;
    std::int32_t numberOfActuallyRenamedFiles = 0;
    std::int32_t numberOfItemsNotRenamed = 0; ///< of the last run: those whose renames failed
    std::int32_t totalNumberOfNodes = 0;      ///< nothing writes it; the dump prints it
    bool needToRedoConflictResolution = false;
    bool operator==(const EngineControl&) const = default;
};

} // namespace tavrin
