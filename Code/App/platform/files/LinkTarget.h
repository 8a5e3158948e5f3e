#pragma once

#include <string>

namespace tavrin {

/// The path that a path stands for: links at its end are followed, also one whose target is not there. A
/// path that is no link, or leads round in a circle, stands for itself. Bytes; any thread.
std::string linkTarget(const std::string& path);

} // namespace tavrin
