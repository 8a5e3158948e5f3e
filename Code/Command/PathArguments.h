#pragma once

#include <string>
#include <vector>

namespace tavrin {

/// Why a path could not be added, given those on the command line: a sentence for the user.
std::string reasonOfRefusal(const std::string& refused, const std::vector<std::string>& paths);

} // namespace tavrin
