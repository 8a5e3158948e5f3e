#include "PathArguments.h"

#include "platform/files/FileSystem.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

namespace tavrin {

namespace {

bool isInside(std::string_view path, std::string_view folder) {
    return path.size() > folder.size() && path.starts_with(folder) &&
           (folder.ends_with('/') || path[folder.size()] == '/');
}

} // namespace

std::string shownFolder(std::string_view folder, std::string_view workingFolder) {
    std::string shown(folder);
    if (folder == workingFolder)
        shown = ".";
    else if (isInside(folder, workingFolder))
        shown = folder.substr(workingFolder.size() + (workingFolder.ends_with('/') ? 0 : 1));
    return shown.ends_with('/') ? shown : shown + '/';
}

std::string reasonOfRefusal(const std::string& refused, const std::vector<std::string>& paths) {
    FileStatus status;
    const int error = refused.empty() ? ENOENT : FileSystem::sharedInstance().followedStatus(refused, status);
    if (error == ENOENT || error == ENOTDIR)
        return "there is no such file or folder";
    if (error != 0)
        return fmt::format("it cannot be looked at: {}", std::generic_category().message(error));
    if (std::ranges::count(paths, refused) > 1)
        return "it is given more than once";
    const auto folder =
        std::ranges::find_if(paths, [&](const auto& other) { return isInside(refused, other); });
    if (folder != paths.end())
        return fmt::format("it lies inside {}, which is given too", *folder);
    const auto item =
        std::ranges::find_if(paths, [&](const auto& other) { return isInside(other, refused); });
    if (item != paths.end())
        return fmt::format("{}, which is given too, lies inside it", *item);
    return "it cannot be added";
}

} // namespace tavrin
