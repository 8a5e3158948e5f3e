#pragma once

#include <ctime>
#include <fcntl.h>
#include <stdexcept>
#include <string>
#include <sys/stat.h>

namespace tavrin::test {

/// Sets when a file was last changed: local time as "2024-06-14 07:31:05". What cannot be done throws
/// std::runtime_error.
inline void setModificationTime(const std::string& path, const std::string& localTime) {
    std::tm fields{};
    const char* const end = ::strptime(localTime.c_str(), "%Y-%m-%d %H:%M:%S", &fields);
    fields.tm_isdst = -1;
    const timespec time{std::mktime(&fields), 0};
    const timespec times[2] = {time, time};
    if (end == nullptr || *end != '\0' || ::utimensat(AT_FDCWD, path.c_str(), times, 0) != 0)
        throw std::runtime_error("cannot set the time of " + path + " to " + localTime);
}

} // namespace tavrin::test
