#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The paths of a command line in absolute form: of each the folder is resolved, the last component is as it
/// stands, so that a link is not followed. One that leads nowhere stays as it is. All in bytes.
std::vector<std::string> absolutePaths(const std::vector<std::string>& given);

/// Why a path could not be added, given those on the command line: a sentence for the user.
std::string reasonOfRefusal(const std::string& refused, const std::vector<std::string>& paths);

} // namespace tavrin
