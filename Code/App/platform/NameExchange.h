#pragma once

#include <string>

namespace tavrin {

/// Lets what has one path take the other and the reverse, at once where the file system can; else in three
/// renames, each of which replaces nothing, by way of `first` with ".old" behind it. Whatever fails, both are
/// still there. Returns 0 or an errno value. Any thread.
int exchangeNames(const std::string& first, const std::string& second);

} // namespace tavrin
