#pragma once

#include <string>
#include <vector>

namespace tavrin {

/// The paths of a command line in absolute form: of each the folder is resolved, the last component is as it
/// stands, so that a link is not followed. One that leads nowhere stays as it is. All in bytes.
[[nodiscard]] std::vector<std::string> absolutePaths(const std::vector<std::string>& given);

} // namespace tavrin
