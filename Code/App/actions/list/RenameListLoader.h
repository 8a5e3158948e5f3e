#pragma once

#include "actions/list/TextColumn.h"

#include <string>

namespace tavrin {

/// Reads a list of new names, one a line, which stay as they stand. One object reads one file.
class RenameListLoader {
  public:
    /// As in TabDelimitedFileListLoader.
    [[nodiscard]] int loadFromPath(const std::string& path);

    [[nodiscard]] TextColumn& getFileArray() { return fileArray; }

  private:
    TextColumn fileArray;
};

} // namespace tavrin
