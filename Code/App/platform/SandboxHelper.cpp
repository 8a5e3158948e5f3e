#include "platform/SandboxHelper.h"

#include "platform/UserFolders.h"

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

} // namespace tavrin
