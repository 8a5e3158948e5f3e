#pragma once

#include "platform/files/Descriptor.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Paths that are read from a file or from standard input, one a line, as they come: however long the list
/// is, no more than a part of it is held. Empty lines are passed over; nothing else means anything.
class PathList {
  public:
    /// `source` is a path, or "-" for standard input; `endsWithNull` says that a NUL ends each path, else a
    /// line feed does. Reading ends when `interruption`, if it is a descriptor, becomes readable. Throws
    /// UsageError, as `next` does, where the list can't be read.
    PathList(const std::string& source, bool endsWithNull, int interruption = -1);

    /// The next paths, in bytes; none at the end. Waits for them.
    [[nodiscard]] std::vector<std::string> next();

  private:
    /// False at the end.
    bool readMore();
    void take(std::string_view line, std::vector<std::string>& into) const;
    [[noreturn]] void fail(std::string_view reason) const;

    std::string name;
    char separator;
    int interruption;
    Descriptor opened;
    int descriptor;
    std::string rest; ///< the beginning of a line
    bool isAtEnd = false;
};

} // namespace tavrin
