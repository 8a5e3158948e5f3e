#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// A folder as its user would write it in the working folder: from there, with "/" at the end, if it is that
/// one ("./") or lies below it.
std::string shownFolder(std::string_view folder, std::string_view workingFolder);

/// Why a path could not be added, given those on the command line: a sentence for the user.
std::string reasonOfRefusal(const std::string& refused, const std::vector<std::string>& paths);

} // namespace tavrin
