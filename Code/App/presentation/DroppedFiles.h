#pragma once

#include <string>
#include <vector>

class QMimeData;

namespace tavrin {

/// Files that come by drag or from the clipboard.
struct DroppedFiles {
    [[nodiscard]] static bool areIn(const QMimeData& data);
    /// The local ones, in bytes as the file system has them: percent escapes are taken as bytes, so that
    /// names that are not UTF-8 arrive whole.
    [[nodiscard]] static std::vector<std::string> paths(const QMimeData& data);
};

} // namespace tavrin
