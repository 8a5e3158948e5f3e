#pragma once

#include "support/values/PropertyValue.h"

#include <optional>
#include <string>

namespace tavrin {

class SecurityBookmarks;
class UserDefaults;

/// Where the program keeps its files, and what a sandbox asks of it. No sandbox and no bookmarks exist here
/// unless they are set; without them nothing is granted and nothing is refused.
struct SandboxHelper {
    /// The per-user data folder, without a slash at the end: "Tavrin 9" in the user's data folder, unless it
    /// has been set. It need not exist. Any thread.
    static std::string getApplicationSupportFolderPath();
    /// Replaces the data folder for this process; absent restores it. Set before other threads ask.
    static void setApplicationSupportFolderPath(std::optional<std::string> path);
    /// The folder of presets for all users, with a slash at the end.
    static std::string globalPresetsFolder();

    static constexpr bool isSandboxOn() { return false; }

    /// The system's bookmarks (not owned); null for a system without them. Set before other threads ask.
    static void setSecurityBookmarks(SecurityBookmarks* bookmarks);
    [[nodiscard]] static bool securityBookmarksAreAvailable();
    /// In the following, absent and false where there are no bookmarks or the system refuses.
    [[nodiscard]] static std::optional<PropertyData>
    getApplicationSecurityScopedBookmark(const std::string& address);
    [[nodiscard]] static std::optional<std::string>
    resolveSecurityScopedBookmark(const std::optional<PropertyData>& bookmark);
    static bool startUsingSecurityScopedBookmark(const std::optional<std::string>& address);
    static bool stopUsingSecurityScopedBookmark(const std::optional<std::string>& address);

    static void archiveSecurityBookmark(const std::optional<PropertyData>& bookmark, UserDefaults& defaults,
                                        const std::string& toUserDefaultsKey);
    [[nodiscard]] static std::optional<PropertyData>
    unarchiveSecurityBookmark(const UserDefaults& defaults, const std::string& fromUserDefaultsKey);

    /// `forAccessKind` as for access(2).
    [[nodiscard]] static bool isPathAccessible(const std::string& path, int forAccessKind);
};

} // namespace tavrin
