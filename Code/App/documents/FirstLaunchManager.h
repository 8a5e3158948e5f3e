#pragma once

#include <string>

namespace tavrin {

class UserDefaults;

/// Tells the first launch of this version and lets it begin with clean user defaults.
class FirstLaunchManager {
  public:
    /// `location` is where the program lies (bytes); others find it by the user default of that name.
    FirstLaunchManager(UserDefaults& defaults, std::string location);

    /// Once, at the start. On a first launch all stored user defaults go, `location` included: it is back
    /// after the next launch.
    void doIt();
    [[nodiscard]] bool isFirstLaunch() const { return firstLaunch; }
    /// Whether no launch of this version has been recorded yet.
    [[nodiscard]] bool callOnlyOnceIsFirstLaunch() const;

  private:
    void registerDefaults();
    void rememberLocation();

    UserDefaults& defaults;
    std::string location;
    bool firstLaunch = false;
};

} // namespace tavrin
