#pragma once

#include <optional>
#include <string>

namespace tavrin {

class UserDefaults;

/// Tells the first launch of this version and lets it begin with clean user defaults.
class FirstLaunchManager {
  public:
    /// `location` is where the program lies (bytes); others find it by the user default of that name.
    FirstLaunchManager(UserDefaults& defaults, std::string location);

    /// Once, at the start. On a first launch all stored user defaults go, `location` included: it is back
    /// after the next launch. What another version has stored is copied to a file of its own first; where
    /// that fails, it stays as it is and nothing of this process is stored.
    void doIt();
    [[nodiscard]] bool isFirstLaunch() const { return firstLaunch; }
    /// What became of the settings of another version; absent where there were none.
    struct OtherSettings {
        std::string copy;                 ///< where they lie now
        std::optional<std::string> error; ///< or why they could not be copied
        bool isNewer = false;
    };
    [[nodiscard]] const std::optional<OtherSettings>& otherSettings() const { return other; }
    /// Whether no launch of this version has been recorded yet.
    [[nodiscard]] bool callOnlyOnceIsFirstLaunch() const;

  private:
    void registerDefaults();
    void setOtherSettingsAside();
    void rememberLocation();

    UserDefaults& defaults;
    std::string location;
    bool firstLaunch = false;
    std::optional<OtherSettings> other;
};

} // namespace tavrin
