#pragma once

#include <string>

namespace tavrin {

/// Makes the folder, and what is missing above it, for the user's eyes alone. What is there stays as it is.
/// Returns 0 or an errno value. Any thread.
int makePrivateFolder(const std::string& path);

} // namespace tavrin
