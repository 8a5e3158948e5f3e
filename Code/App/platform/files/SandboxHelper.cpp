#include "platform/files/SandboxHelper.h"

#include "platform/desktop/UserFolders.h"
#include "platform/files/SecurityBookmarks.h"
#include "platform/propertylists/UserDefaults.h"

#include <unistd.h>
#include <utility>

namespace tavrin {

namespace {

std::optional<std::string> replacement;
SecurityBookmarks* systemBookmarks = nullptr;

} // namespace

std::string SandboxHelper::getApplicationSupportFolderPath() {
    return replacement ? *replacement : UserFolders::data() + "/Tavrin 9";
}

void SandboxHelper::setApplicationSupportFolderPath(std::optional<std::string> path) {
    replacement = std::move(path);
}

std::string SandboxHelper::globalPresetsFolder() { return "/usr/local/share/Tavrin 9/Presets/"; }

void SandboxHelper::setSecurityBookmarks(SecurityBookmarks* bookmarks) { systemBookmarks = bookmarks; }

bool SandboxHelper::securityBookmarksAreAvailable() { return systemBookmarks != nullptr; }

std::optional<PropertyData> SandboxHelper::getApplicationSecurityScopedBookmark(const std::string& address) {
    return systemBookmarks ? systemBookmarks->bookmarkDataFor(address) : std::nullopt;
}

std::optional<std::string>
SandboxHelper::resolveSecurityScopedBookmark(const std::optional<PropertyData>& bookmark) {
    return systemBookmarks && bookmark ? systemBookmarks->addressOf(*bookmark) : std::nullopt;
}

bool SandboxHelper::startUsingSecurityScopedBookmark(const std::optional<std::string>& address) {
    return systemBookmarks && address && systemBookmarks->startAccessing(*address);
}

bool SandboxHelper::stopUsingSecurityScopedBookmark(const std::optional<std::string>& address) {
    if (!systemBookmarks || !address)
        return false;
    systemBookmarks->stopAccessing(*address);
    return true;
}

void SandboxHelper::archiveSecurityBookmark(const std::optional<PropertyData>& bookmark,
                                            UserDefaults& defaults, const std::string& toUserDefaultsKey) {
    if (bookmark)
        defaults.setObject(toUserDefaultsKey, *bookmark);
}

std::optional<PropertyData> SandboxHelper::unarchiveSecurityBookmark(const UserDefaults& defaults,
                                                                     const std::string& fromUserDefaultsKey) {
    const auto stored = defaults.objectForKey(fromUserDefaultsKey);
    const PropertyData* bookmark = stored ? stored->asData() : nullptr;
    return bookmark ? std::optional(*bookmark) : std::nullopt;
}

bool SandboxHelper::isPathAccessible(const std::string& path, int forAccessKind) {
    return path.find('\0') == std::string::npos && ::access(path.c_str(), forAccessKind) == 0;
}

} // namespace tavrin
