#pragma once

#include <optional>
#include <string>

namespace tavrin {

/// Where the program keeps its files, and what it would have to know of a sandbox, of which there is none
/// here.
struct SandboxHelper {
    /// The per-user data folder, without a slash at the end: "Tavrin 9" in the user's data folder, unless it
    /// has been set. It need not exist. Any thread.
    static std::string getApplicationSupportFolderPath();
    /// Replaces the data folder for this process; absent restores it. Set before other threads ask.
    static void setApplicationSupportFolderPath(std::optional<std::string> path);
    /// The folder of presets for all users, with a slash at the end.
    static std::string globalPresetsFolder();

    static constexpr bool isSandboxOn() { return false; }
    static constexpr bool securityBookmarksAreAvailable() { return false; }
    /// `forAccessKind` as for access(2).
    [[nodiscard]] static bool isPathAccessible(const std::string& path, int forAccessKind);
};

} // namespace tavrin
