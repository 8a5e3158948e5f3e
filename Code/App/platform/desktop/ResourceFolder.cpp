#include "platform/desktop/ResourceFolder.h"

#include "platform/files/FileSystem.h"
#include "support/text/PathParts.h"

#include <array>
#include <cstdlib>
#include <limits.h>
#include <unistd.h>

namespace tavrin {

namespace {

/// The folder of the running program, or empty.
std::string programFolder() {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (length <= 0)
        return {};
    const std::string program(buffer.data(), static_cast<std::size_t>(length));
    return std::string(PathParts(program).folder);
}

} // namespace

std::vector<std::string> ResourceFolder::candidates() {
    if (const char* named = std::getenv("TAVRIN_RESOURCES"); named != nullptr && *named != '\0')
        return {named};
    std::vector<std::string> folders;
    if (const std::string program = programFolder(); !program.empty())
        folders.push_back(program + "/../share/tavrin");
    folders.emplace_back(TAVRIN_RESOURCE_INSTALL_FOLDER);
    if (constexpr std::string_view sources = TAVRIN_RESOURCE_SOURCE_FOLDER; !sources.empty())
        folders.emplace_back(sources);
    return folders;
}

std::string resourcePath(std::string_view name) {
    std::string path;
    for (const std::string& folder : ResourceFolder::candidates()) {
        path = folder + "/" + std::string(name);
        if (FileSystem::sharedInstance().exists(path))
            return path;
    }
    return path;
}

} // namespace tavrin
