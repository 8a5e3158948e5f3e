#pragma once

#include <string>

namespace tavrin {

/// Copies a file, a link or a folder with all below it to the path `to`, whose folder must exist. Links are
/// copied as links and never followed; permissions and modification times are kept. Nothing is ever replaced:
/// EEXIST when `to` is taken. The copy shows under its name only when it is whole; one that failed leaves
/// nothing behind. Returns 0 or an errno value: EINVAL for pipes, sockets and devices and for a folder that
/// would be copied into itself, ELOOP for folders nested deeper than 64, EFBIG for more than `mostEntries`
/// items or more than 1 GiB. Any thread.
int copyItem(const std::string& from, const std::string& to, int mostEntries = 100'000);

} // namespace tavrin
