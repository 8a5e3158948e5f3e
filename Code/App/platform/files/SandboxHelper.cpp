#include "platform/files/SandboxHelper.h"

#include "platform/desktop/UserFolders.h"

#include <unistd.h>
#include <utility>

namespace tavrin {

namespace {

std::optional<std::string> replacement;

} // namespace

std::string SandboxHelper::getApplicationSupportFolderPath() {
    return replacement ? *replacement : UserFolders::data() + "/Tavrin 9";
}

void SandboxHelper::setApplicationSupportFolderPath(std::optional<std::string> path) {
    replacement = std::move(path);
}

std::string SandboxHelper::globalPresetsFolder() { return "/usr/local/share/Tavrin 9/Presets/"; }

bool SandboxHelper::isPathAccessible(const std::string& path, int forAccessKind) {
    return path.find('\0') == std::string::npos && ::access(path.c_str(), forAccessKind) == 0;
}

} // namespace tavrin
