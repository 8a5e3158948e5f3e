#include "platform/files/FolderEntries.h"
#include "platform/metadata/FileManager.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

constexpr std::array<std::string_view, 6> bundleSuffixes = {".app",  ".bundle", ".plugin",
                                                            ".kext", ".rtfd",   ".band"};

bool hasBundleSuffix(std::string_view path) {
    std::string lowered;
    text::lowercaseBytes(lastComponent(path), lowered);
    return std::any_of(bundleSuffixes.begin(), bundleSuffixes.end(),
                       [&lowered](std::string_view suffix) { return lowered.ends_with(suffix); });
}

bool exists(const std::string& path) { return FileSystem::sharedInstance().exists(path); }

bool isFolderOnDisk(const std::string& path) {
    FileStatus status;
    return FileSystem::sharedInstance().followedStatus(path, status) == 0 &&
           status.kind == FileStatus::Kind::folder;
}

/// Whether the folder is an application folder: a program AppRun beside its description.
bool holdsLauncher(const std::string& folder) {
    if (!exists(folder + "/AppRun"))
        return false;
    std::unique_ptr<OpenFolder> opened;
    FolderEntries entries;
    if (FileSystem::sharedInstance().openFolder(folder, opened) != 0 || opened->entries(entries) != 0)
        return false;
    for (const FolderEntry entry : entries) {
        if (entry.name.ends_with(".desktop"))
            return true;
    }
    return false;
}

} // namespace

bool FileManager::isFile(const std::string& path) const { return !isFolderOnDisk(path); }

bool FileManager::isFolder(const std::string& path) const { return !isFile(path) && !isBundle(path); }

bool FileManager::isBundle(const std::string& path) const {
    FileStatus status;
    if (FileSystem::sharedInstance().followedStatus(path, status) != 0)
        return true;
    return status.kind == FileStatus::Kind::folder && isBundleFolder(path);
}

bool FileManager::isBundleFolder(const std::string& path) const {
    const std::string folder = path.substr(0, path.find_last_not_of('/') + 1);
    return hasBundleSuffix(folder) || exists(folder + "/Contents/Info.plist") || holdsLauncher(folder);
}

bool FileManager::folderIsLikelyToBeABundle(const std::string& path) const {
    if (hasBundleSuffix(path))
        return true;
    if (!isFolderOnDisk(path) || !isBundleFolder(path))
        return false;
    return exists(path + "/Contents") || exists(path + "/Info.plist") || exists(path + "/PkgInfo");
}

} // namespace tavrin
