#pragma once

#include <functional>
#include <mutex>
#include <set>
#include <string>

namespace tavrin {

class RunLoop;
class UserDefaults;

/// Keeps in mind which folders the user has granted access to since the start, as a sandbox would demand it.
/// No system that this program runs on knows bookmarks by which a grant could outlive it. Paths are absolute,
/// in bytes. Any thread.
class FileSystemAccessManager {
  public:
    /// Asks the user to grant access to a path; called on the main thread.
    using Request = std::function<void(const std::string& path)>;

    /// All outlive this.
    FileSystemAccessManager(UserDefaults& userDefaults, RunLoop& mainLoop, Request grantRequest);
    ~FileSystemAccessManager();
    FileSystemAccessManager(const FileSystemAccessManager&) = delete;
    FileSystemAccessManager& operator=(const FileSystemAccessManager&) = delete;

    /// The instance alive (registered by the constructor, withdrawn by the destructor).
    static FileSystemAccessManager& sharedInstance();

    /// Whether the path or a folder around it has been granted.
    [[nodiscard]] bool wasAccessAlreadyObtainedForPath(const std::string& path) const;
    /// Asks the user, unless access has been obtained before. Waits for the answer.
    void obtainAccessToPath(const std::string& path);
    /// Notes a grant that the user has just given.
    void storeAccessToPath(const std::string& path);
    /// Empties the stored list, in which other versions may have kept bookmarks; the grants of the running
    /// program stay.
    void revokeAllSecurityBookmarks();

  private:
    UserDefaults& defaults;
    RunLoop& loop;
    Request request;

    mutable std::mutex mutex; ///< guards what follows; never held while the user is asked
    std::set<std::string, std::less<>> accessObtained;
};

} // namespace tavrin
