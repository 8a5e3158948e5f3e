#include "platform/desktop/SystemVersion.h"

#include "platform/files/FileSystem.h"

#include <algorithm>
#include <array>
#include <sys/utsname.h>

namespace tavrin {

namespace {

constexpr std::size_t osReleaseLimit = 64 * 1024;
constexpr std::string_view digits = "0123456789";

} // namespace

std::string SystemVersion::ofKernelRelease(std::string_view release) {
    std::array<std::string, 3> numbers{"", "0", "0"};
    for (std::string& number : numbers) {
        const std::size_t end = std::min(release.find_first_not_of(digits), release.size());
        if (end == 0)
            break;
        number = release.substr(0, end);
        release.remove_prefix(end);
        if (!release.starts_with('.'))
            break;
        release.remove_prefix(1);
    }
    return numbers[0].empty() ? "" : numbers[0] + "." + numbers[1] + "." + numbers[2];
}

std::string SystemVersion::ofDistribution(std::string_view osRelease) {
    constexpr std::string_view key = "VERSION_ID=";
    while (!osRelease.empty()) {
        std::string_view line = osRelease.substr(0, osRelease.find('\n'));
        osRelease.remove_prefix(std::min(line.size() + 1, osRelease.size()));
        if (!line.starts_with(key))
            continue;
        line.remove_prefix(key.size());
        const std::size_t start = line.find_first_not_of("\"'");
        return start == std::string_view::npos
                   ? ""
                   : std::string(line.substr(start, line.find_last_not_of("\"' \r") + 1 - start));
    }
    return {};
}

std::string SystemVersion::asText() {
    utsname name{};
    if (::uname(&name) == 0) {
        if (std::string version = ofKernelRelease(name.release); !version.empty())
            return version;
    }
    std::string content;
    if (FileSystem::sharedInstance().readFile("/etc/os-release", content, osReleaseLimit) == 0) {
        if (std::string version = ofDistribution(content); !version.empty())
            return version;
    }
    return "0.0.0";
}

} // namespace tavrin
