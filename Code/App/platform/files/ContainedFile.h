#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavrin {

/// Reads a regular file that lies inside a folder: no component below the folder may be a link, so that what
/// is read cannot lie anywhere else. Returns 0 or an errno value: ELOOP or ENOTDIR for a link on the way,
/// EINVAL for anything but a regular file, EFBIG beyond `limit` bytes.
[[nodiscard]] int readContainedFile(const std::string& folder, std::string_view relativePath,
                                    std::string& into, std::size_t limit);

} // namespace tavrin
