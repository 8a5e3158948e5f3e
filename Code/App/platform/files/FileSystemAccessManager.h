#pragma once

#include "support/values/PropertyValue.h"

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

class RunLoop;
class UserDefaults;

/// Keeps the user's grants for folders over launches, as a sandbox demands it: bookmarks in the user
/// defaults, and what has been used since the start. Paths are absolute, in bytes; without bookmarks in the
/// system it knows of no grant. Any thread.
class FileSystemAccessManager {
  public:
    /// Asks the user to grant access to a path; called on the main thread.
    using Request = std::function<void(const std::string& path)>;

    /// Reads the stored grants. All outlive this.
    FileSystemAccessManager(UserDefaults& userDefaults, RunLoop& mainLoop, Request grantRequest);
    ~FileSystemAccessManager();
    FileSystemAccessManager(const FileSystemAccessManager&) = delete;
    FileSystemAccessManager& operator=(const FileSystemAccessManager&) = delete;

    /// The instance alive (registered by the constructor, withdrawn by the destructor).
    static FileSystemAccessManager& sharedInstance();

    void loadBookmarks();
    /// The address of the shortest granted folder that encloses the path, or of the path itself.
    [[nodiscard]] std::optional<std::string>
    getAppropirateSecurityURLBookmarkForPath(const std::string& path) const;
    [[nodiscard]] bool wasAccessAlreadyObtainedForPath(const std::string& path) const;
    /// Makes use of a grant if there is one, and asks the user in any case, unless access has been obtained
    /// before. Waits for the answer.
    void obtainAccessToPath(const std::string& path);
    /// Keeps a grant that the user has just given.
    void storeAccessToPath(const std::string& path);
    void writeBookmarkForPathToPreferencesFile(const PropertyData& bookmark);
    /// Enters the bookmark under the path that it leads to.
    void internalAddAccessToPath(const std::string& path, const PropertyData& withBookmark,
                                 bool accessObtained);
    /// Forgets the stored grants; those of the running program stay.
    void revokeAllSecurityBookmarks();

  private:
    /// The stored bookmarks; whatever else stands there is left out.
    [[nodiscard]] PropertyArray storedBookmarks() const;
    void noteAccess(const std::string& path);

    UserDefaults& defaults;
    RunLoop& loop;
    Request request;

    mutable std::mutex mutex; ///< guards what follows; never held while the system or the user is asked
    std::map<std::string, std::string, std::less<>> bookmarksByPath;
    std::map<std::string, bool, std::less<>> accessObtainedByPath;
    std::mutex defaultsMutex; ///< between reading the stored list and writing it back
};

} // namespace tavrin
