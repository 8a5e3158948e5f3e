#pragma once

#include <QByteArray>
#include <optional>
#include <string>

namespace tavrin {

/// Paths as "file:" addresses, in which every byte survives. Addresses are ASCII.
class FileAddress {
  public:
    [[nodiscard]] static QByteArray ofPath(const std::string& path);
    /// The absolute path; absent where the address is not that of a file of this machine.
    [[nodiscard]] static std::optional<std::string> path(QByteArray address);
};

} // namespace tavrin
