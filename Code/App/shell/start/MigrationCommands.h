#pragma once

#include "documents/MigrationManager.h"
#include "shell/commands/ShellServices.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tavrin {

class PresetsManager;

/// The commands that take presets and droplets of the previous version over, with their panels. Nothing of
/// this runs by itself. Main thread.
class MigrationCommands {
  public:
    struct Options {
        std::string dataFolder;               ///< the folders of the previous version lie beside it
        std::string program;                  ///< that launchers of droplets start
        std::function<void()> presetsChanged; ///< the list has been loaded anew
    };
    MigrationCommands(ShellServices& shared, PresetsManager& presetsManager, Options newOptions)
        : services(shared), presets(presetsManager), options(std::move(newOptions)) {}

    /// From the folders of the previous version on this computer.
    void migratePresets();
    /// From a folder that the user chooses, such as one copied from another computer: the one that holds
    /// "Presets", or "Presets" itself.
    void migratePresetsFromFolder();
    /// Droplets that the user chooses. Each is tried, also after a failure.
    void migrateDroplet();

  private:
    void tellAll(std::vector<PresetMigration> results);
    void tell(const PresetMigration& result, std::function<void()> then);
    void migratePresetsIn(const std::string& folder);
    void migrateDroplets(const std::vector<std::string>& paths);

    ShellServices& services;
    PresetsManager& presets;
    Options options;
};

} // namespace tavrin
