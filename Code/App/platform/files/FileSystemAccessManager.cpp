#include "platform/files/FileSystemAccessManager.h"

#include "platform/files/SandboxHelper.h"
#include "platform/processes/RunLoop.h"
#include "platform/propertylists/UserDefaults.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace tavrin {

namespace {

constexpr std::string_view listKey = "permamentAccessListArray";

FileSystemAccessManager* registered = nullptr;

std::string withoutSlashes(std::string path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back();
    return path;
}

/// The entry of the shortest folder on the way to the path, beginning with the root; the end where there is
/// none.
template <typename Entries> auto firstOnTheWay(const Entries& entries, const std::string& path) {
    auto found = path.starts_with('/') ? entries.find("/") : entries.end();
    const std::string whole = withoutSlashes(path);
    for (std::size_t end = 0; found == entries.end() && end < whole.size();) {
        end = std::min(whole.find('/', end + 1), whole.size());
        found = entries.find(std::string_view(whole).substr(0, end));
    }
    return found;
}

} // namespace

FileSystemAccessManager::FileSystemAccessManager(UserDefaults& userDefaults, RunLoop& mainLoop,
                                                 Request grantRequest)
    : defaults(userDefaults), loop(mainLoop), request(std::move(grantRequest)) {
    registered = this;
    loadBookmarks();
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

PropertyArray FileSystemAccessManager::storedBookmarks() const {
    const auto stored = defaults.objectForKey(listKey);
    const PropertyArray* list = stored ? stored->asArray() : nullptr;
    PropertyArray bookmarks;
    if (list) {
        for (const PropertyValue& entry : *list)
            if (entry.asData())
                bookmarks.push_back(entry);
    }
    return bookmarks;
}

void FileSystemAccessManager::loadBookmarks() {
    for (const PropertyValue& bookmark : storedBookmarks())
        internalAddAccessToPath({}, *bookmark.asData(), false);
}

std::optional<std::string>
FileSystemAccessManager::getAppropirateSecurityURLBookmarkForPath(const std::string& path) const {
    const std::lock_guard lock(mutex);
    const auto found = firstOnTheWay(bookmarksByPath, path);
    return found == bookmarksByPath.end() ? std::nullopt : std::optional(found->second);
}

bool FileSystemAccessManager::wasAccessAlreadyObtainedForPath(const std::string& path) const {
    const std::lock_guard lock(mutex);
    return firstOnTheWay(accessObtainedByPath, path) != accessObtainedByPath.end();
}

void FileSystemAccessManager::noteAccess(const std::string& path) {
    const std::lock_guard lock(mutex);
    accessObtainedByPath.insert_or_assign(withoutSlashes(path), true);
}

void FileSystemAccessManager::obtainAccessToPath(const std::string& path) {
    if (wasAccessAlreadyObtainedForPath(path))
        return;
    if (const auto bookmark = getAppropirateSecurityURLBookmarkForPath(path)) {
        (void)SandboxHelper::startUsingSecurityScopedBookmark(bookmark);
        noteAccess(*bookmark);
    }
    (void)loop.performAndWait([this, &path] { request(path); });
}

void FileSystemAccessManager::storeAccessToPath(const std::string& path) {
    if (!getAppropirateSecurityURLBookmarkForPath(path)) {
        if (const auto bookmark = SandboxHelper::getApplicationSecurityScopedBookmark(path)) {
            writeBookmarkForPathToPreferencesFile(*bookmark);
            internalAddAccessToPath(path, *bookmark, true);
        }
    }
    noteAccess(path);
}

void FileSystemAccessManager::writeBookmarkForPathToPreferencesFile(const PropertyData& bookmark) {
    const std::lock_guard lock(defaultsMutex);
    PropertyArray bookmarks = storedBookmarks();
    bookmarks.emplace_back(bookmark);
    defaults.setObject(listKey, std::move(bookmarks));
}

void FileSystemAccessManager::internalAddAccessToPath(const std::string&, const PropertyData& withBookmark,
                                                      bool) {
    std::optional<std::string> address = SandboxHelper::resolveSecurityScopedBookmark(withBookmark);
    if (!address || address->empty())
        return;
    const std::lock_guard lock(mutex);
    bookmarksByPath.insert_or_assign(withoutSlashes(*address), *address);
}

void FileSystemAccessManager::revokeAllSecurityBookmarks() {
    const std::lock_guard lock(defaultsMutex);
    defaults.setObject(listKey, PropertyArray());
}

} // namespace tavrin
