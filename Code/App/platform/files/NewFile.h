#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// Writes a file that must not be there yet: it shows under its name only when it is whole and on the disk.
/// Returns 0 or an errno value, EEXIST when the name is taken, whoever took it; a failure leaves nothing
/// behind. Any thread.
int writeNewFile(const std::string& path, std::string_view content);

} // namespace tavrin
