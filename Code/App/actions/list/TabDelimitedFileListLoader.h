#pragma once

#include "actions/list/ListField.h"
#include "actions/list/TextColumn.h"

#include <string_view>

namespace tavrin {

class ListScanner;

/// Reads a list of two columns: the name or the full path of a file, a tab, its new name. One object reads
/// one list.
class TabDelimitedFileListLoader {
  public:
    /// Whether the names of files are compared, and therefore stored, in lower case.
    void setIgnoreCase(bool ignores) { ignoreCase = ignores; }

    /// Takes the content of a list. 0, or the number of the line that failed, from 1; blank lines don't
    /// count.
    [[nodiscard]] int load(std::string_view bytes);

    [[nodiscard]] TextColumn& getFileArray() { return fileArray; }
    [[nodiscard]] TextColumn& getNewNameArray() { return newNameArray; }
    /// Whether the first column holds full paths; it does in a list without lines.
    [[nodiscard]] bool usesFullPosixPath() const { return holdsPaths; }

  private:
    [[nodiscard]] bool readLine(ListScanner& scanner, bool isFirst);

    TextColumn fileArray;
    TextColumn newNameArray;
    bool holdsPaths = true;
    bool ignoreCase = false;
    ListField field;
};

} // namespace tavrin
