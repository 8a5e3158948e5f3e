#pragma once

#include "documents/DropletBundleWriter.h"
#include "shell/commands/ShellServices.h"
#include "support/values/PropertyValue.h"

#include <functional>
#include <optional>
#include <string>

namespace tavrin {

class ActionListCommands;
class NoticeDialogs;

/// Makes droplets of the chain and the settings of the moment. Main thread.
class DropletCommands {
  public:
    struct Units {
        ActionListCommands& commands;
        NoticeDialogs& notices;
    };
    /// `location` of the program, in bytes.
    DropletCommands(ShellServices& shared, Units otherUnits, const std::string& location);

    /// What a droplet's settings file holds.
    [[nodiscard]] PropertyDictionary createDropletPropertyList() const;
    /// Asks where to, and writes a droplet there.
    void createDroplet();
    /// Writes chain and settings back into a droplet. The error for the user on failure.
    [[nodiscard]] std::optional<std::string> saveDropletSettings(const std::string& toPath) const;
    /// Brings the droplet with these settings to the present form, telling the user before and after;
    /// `finished` is called in the end.
    void upgrade(const std::string& settingsPath, std::function<void()> finished);

  private:
    void askForPlace();
    void createDropletAt(const std::string& chosenPath);
    void upgradeNow(const std::string& settingsPath, std::function<void()> finished);

    ShellServices& services;
    Units units;
    DropletBundleWriter writer;
};

} // namespace tavrin
