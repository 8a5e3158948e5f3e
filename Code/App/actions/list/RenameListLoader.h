#pragma once

#include "actions/list/TextColumn.h"

#include <string_view>

namespace tavrin {

/// Reads a list of new names, one a line, which stay as they stand. One object reads one list.
class RenameListLoader {
  public:
    /// As in TabDelimitedFileListLoader.
    [[nodiscard]] int load(std::string_view bytes);

    [[nodiscard]] TextColumn& getFileArray() { return fileArray; }

  private:
    TextColumn fileArray;
};

} // namespace tavrin
