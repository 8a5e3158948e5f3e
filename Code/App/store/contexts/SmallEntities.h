#pragma once

#include <cstdint>
#include <string>

namespace tavrin {

/// The one row of counters of the run.
struct EngineControl {
    std::int32_t totalNumberOfFiles = 0;
    std::int32_t totalNumberOfFilesSelectedOrNot = 0;
    std::int32_t numberOfFilesThatNeedRenaming = 0;
    std::int32_t numberOfFolders = 0;
    std::int32_t numberOfNamesMadeDistinct = 0; ///< of those that need renaming
    std::int32_t numberOfActuallyRenamedFiles = 0;
    std::int32_t numberOfItemsNotRenamed = 0; ///< of the last run: those whose renames failed
    std::int32_t totalNumberOfNodes = 0;      ///< nothing writes it; the dump prints it
    bool needToRedoConflictResolution = false;
    bool operator==(const EngineControl&) const = default;
};

/// A path that the user put on the list.
struct SourceItem {
    std::string path; ///< absolute, in bytes, as added; unique
    bool treatAsFolder = false;
    bool readInRoot = false;       ///< the row for the path itself has been made
    bool readInSubfolders = false; ///< the tree below the path has been walked
    std::uint32_t look = 0;        ///< what was seen when it was added, among `SourceLooks`; 0 for nothing
};

/// A failure to show at the end of a run. Title and message are UTF-8, the path is in bytes.
struct ProcessingError {
    std::string title;
    std::string message;
    std::string path;
    bool operator==(const ProcessingError&) const = default;
};

} // namespace tavrin
