#pragma once

#include "platform/propertylists/UserDefaults.h"

#include <memory>
#include <string>

namespace tavrin {

/// Keeps the switch of the debug log equal to the user default "loggerIsOn", from its start to its end; then
/// the switch is off again.
class DebugManager {
  public:
    explicit DebugManager(UserDefaults& defaults);
    ~DebugManager();
    DebugManager(const DebugManager&) = delete;
    DebugManager& operator=(const DebugManager&) = delete;

    /// The object that called awakeFromNib last, or null.
    static DebugManager* sharedDebugManager();
    void awakeFromNib();

    /// Sets the switch without touching the user default.
    void setLoggerIsOn(bool isOn);

  private:
    void copyDefault();

    UserDefaults& userDefaults;
    std::shared_ptr<void> observation;
};

/// Helps to tell why a path leads nowhere.
struct DebugUtilities {
    /// Writes the first part of the path that does not exist to the debug log.
    static void identifyIncorrectPathComponent(const std::string& path);
};

} // namespace tavrin
