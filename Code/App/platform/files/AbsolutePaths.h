#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tavrin {

/// The paths of a command line in absolute form: of each the folder is resolved, the last component is as it
/// stands, so that a link is not followed. One that leads nowhere stays as it is. All in bytes. Those that
/// were resolved before it was to stop.
[[nodiscard]] std::vector<std::string> absolutePaths(const std::vector<std::string>& given,
                                                     const std::function<bool()>& isToStop = {});

/// The path that a path stands for: links at its end are followed, also one whose target is not there. A
/// path that is no link, or leads round in a circle, stands for itself. Bytes; any thread.
std::string linkTarget(const std::string& path);

} // namespace tavrin
