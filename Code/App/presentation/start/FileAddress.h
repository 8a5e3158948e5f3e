#pragma once

#include <QByteArray>
#include <optional>
#include <string>
#include <vector>

class QMimeData;

namespace tavrin {

/// Paths as "file:" addresses, in which every byte survives. Addresses are ASCII.
class FileAddress {
  public:
    [[nodiscard]] static QByteArray ofPath(const std::string& path);
    /// The absolute path; absent where the address is not that of a file of this machine.
    [[nodiscard]] static std::optional<std::string> path(QByteArrayView address);
};

/// Files that come by drag or from the clipboard.
struct DroppedFiles {
    [[nodiscard]] static bool areIn(const QMimeData& data);
    /// The local ones, in bytes as the file system has them: percent escapes are taken as bytes, so that
    /// names that are not UTF-8 arrive whole.
    [[nodiscard]] static std::vector<std::string> paths(const QMimeData& data);
};

} // namespace tavrin
