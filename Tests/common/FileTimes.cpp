#include "common/FileTimes.h"

#include <ctime>
#include <fcntl.h>
#include <stdexcept>
#include <sys/stat.h>

namespace tavrin::test {

void setModificationTime(const std::string& path, const std::string& localTime) {
    std::tm fields{};
    const char* const end = ::strptime(localTime.c_str(), "%Y-%m-%d %H:%M:%S", &fields);
    if (end == nullptr || *end != '\0')
        throw std::runtime_error("no date: " + localTime);
    fields.tm_isdst = -1;
    const std::time_t time = std::mktime(&fields);
    const timespec times[2] = {{time, 0}, {time, 0}};
    if (::utimensat(AT_FDCWD, path.c_str(), times, 0) != 0)
        throw std::runtime_error("cannot set the time of " + path);
}

} // namespace tavrin::test
