#pragma once

#include <string>

namespace tavrin::test {

/// Sets when a file was last changed: local time as "2024-06-14 07:31:05". What cannot be done throws
/// std::runtime_error.
void setModificationTime(const std::string& path, const std::string& localTime);

} // namespace tavrin::test
