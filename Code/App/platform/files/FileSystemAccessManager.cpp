#include "platform/files/FileSystemAccessManager.h"

#include "platform/processes/RunLoop.h"
#include "platform/propertylists/UserDefaults.h"
#include "support/text/PathParts.h"

#include <stdexcept>
#include <utility>

namespace tavrin {

namespace {

FileSystemAccessManager* registered = nullptr;

std::string_view withoutSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

} // namespace

FileSystemAccessManager::FileSystemAccessManager(UserDefaults& userDefaults, RunLoop& mainLoop,
                                                 Request grantRequest)
    : defaults(userDefaults), loop(mainLoop), request(std::move(grantRequest)) {
    registered = this;
}

FileSystemAccessManager::~FileSystemAccessManager() {
    if (registered == this)
        registered = nullptr;
}

FileSystemAccessManager& FileSystemAccessManager::sharedInstance() {
    if (!registered)
        throw std::logic_error("no manager of folder access has been made");
    return *registered;
}

bool FileSystemAccessManager::wasAccessAlreadyObtainedForPath(const std::string& path) const {
    const std::lock_guard lock(mutex);
    for (std::string_view folder = withoutSlashes(path); !folder.empty();) {
        if (accessObtained.contains(folder))
            return true;
        const std::string_view above = PathParts(folder).folder;
        folder = above == folder ? std::string_view() : above;
    }
    return false;
}

void FileSystemAccessManager::obtainAccessToPath(const std::string& path) {
    if (!wasAccessAlreadyObtainedForPath(path))
        (void)loop.performAndWait([this, &path] { request(path); });
}

void FileSystemAccessManager::storeAccessToPath(const std::string& path) {
    const std::lock_guard lock(mutex);
    accessObtained.emplace(withoutSlashes(path));
}

void FileSystemAccessManager::revokeAllSecurityBookmarks() {
    defaults.setObject("permamentAccessListArray", PropertyArray());
}

} // namespace tavrin
