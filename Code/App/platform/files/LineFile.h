#pragma once

#include "platform/files/Descriptor.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tavrin {

/// A file of the user's own, read line by line however large it is.
class LineFile {
  public:
    /// A line beyond this length ends the reading.
    static constexpr std::size_t longestLine = 64 * 1024;

    /// 0 or an errno value. EPERM for a file of another user, EINVAL for what is no regular file, ELOOP for a
    /// link.
    int open(const std::string& path);
    /// The next line without its end. False at the end of the file, at a last line that has none, at a line
    /// that is too long, and where reading fails.
    bool next(std::string_view& line);
    /// How many bytes lie before the next line.
    [[nodiscard]] std::uint64_t position() const { return offset; }
    void rewind();

    [[nodiscard]] std::uint64_t size() const;
    /// What the file ends with.
    [[nodiscard]] std::string tail(std::size_t length) const;
    /// Whether somebody still appends to it: an AppendFile of this or another process.
    [[nodiscard]] bool isHeld() const;

  private:
    bool fill();

    Descriptor file;
    std::string buffer;
    std::size_t used = 0; ///< of the buffer
    std::uint64_t offset = 0;
};

} // namespace tavrin
