#pragma once

#include "support/values/PropertyValue.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// The user defaults: a persistent layer, over it a layer of this process alone, below both the registered
/// defaults. All operations are safe from any thread. A file that is missing or damaged counts as empty, and
/// a damaged one is kept aside, never overwritten in silence.
class UserDefaults {
  public:
    /// In memory only: what tests and the terminal command use.
    UserDefaults();
    /// Persistent in the XML property list at `path` (bytes), written atomically under a lock file, for which
    /// synchronize waits no longer than `lockPatience`.
    explicit UserDefaults(std::string path, std::chrono::milliseconds lockPatience = std::chrono::seconds(3));
    ~UserDefaults();
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    /// Where the program keeps its user defaults: net.calderwick.tvrn9.plist in the user's configuration
    /// folder.
    static std::string defaultPath();

    /// The instance that the application made and registered (not owned).
    static UserDefaults& sharedInstance();
    static void setSharedInstance(UserDefaults* instance);

    /// Adds to the registered defaults; nothing of this is stored.
    void registerDefaults(const PropertyDictionary& values);

    [[nodiscard]] std::optional<PropertyValue> objectForKey(std::string_view key) const;
    /// 0 and false for an absent key.
    [[nodiscard]] int integerForKey(std::string_view key) const;
    [[nodiscard]] bool boolForKey(std::string_view key) const;
    [[nodiscard]] double floatForKey(std::string_view key) const;

    /// Stores in the persistent layer (in memory until synchronize).
    void setObject(std::string_view key, PropertyValue value);
    void removeObject(std::string_view key);
    /// Stores in the layer of this process, which is never written.
    void setProcessObject(std::string_view key, PropertyValue value);
    /// Empties the persistent layer.
    void removePersistentDomain();
    /// Writes what has changed into the persistent layer's file and takes over what other processes have
    /// written there meanwhile; false when it could not be written (the values stay in memory).
    bool synchronize();
    /// Copies the persistent layer's file as it is to its name with ".saved-" and `label` behind it. The path
    /// of the copy, empty where there is no file; or the system's reason why there is none.
    struct Copy {
        std::string path;
        std::optional<std::string> error;
    };
    [[nodiscard]] Copy copyFileAside(std::string_view label) const;
    /// From now on the file is neither read nor written: all changes stay in memory.
    void leaveFileAlone();

    /// Calls `observer` after each change of the key, on the changing thread, until the handle dies; the end
    /// of the handle waits for a call that is under way on another thread.
    [[nodiscard]] std::shared_ptr<void> observe(std::string key, std::function<void()> observer);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace tavrin
