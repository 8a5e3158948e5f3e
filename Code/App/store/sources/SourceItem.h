#pragma once

#include <string>

namespace tavrin {

/// A path that the user put on the list.
struct SourceItem {
    std::string path; ///< absolute, in bytes, as added; unique
    bool treatAsFolder = false;
    bool readInRoot = false;       ///< the row for the path itself has been made
    bool readInSubfolders = false; ///< the tree below the path has been walked
};

} // namespace tavrin
