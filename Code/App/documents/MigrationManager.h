#pragma once

#include <string>
#include <vector>

namespace tavrin {

class PresetsManager;

/// What became of the presets in one folder.
struct PresetMigration {
    std::string folder;      ///< as it was named, in bytes
    bool wasCopied = false;  ///< everything in it, or there was nothing
    std::string failedEntry; ///< the one that ended the copying, in bytes
};

/// Takes presets and droplets of the previous version over. Main thread; the panels are the caller's.
struct MigrationManager {
    /// Looks for the folders of both editions of the previous version beside our own `dataFolder`. One result
    /// for each that exists, in the order in which they were copied.
    [[nodiscard]] static std::vector<PresetMigration> migratePresets(PresetsManager& presets,
                                                                     const std::string& dataFolder);
    /// Copies every entry of "Presets" in this folder into the user's presets and loads these. Nothing is
    /// replaced: an entry whose name is taken fails, as in a second migration, and ends the copying.
    [[nodiscard]] static PresetMigration migratePresetsFolderAt(const std::string& folder,
                                                                PresetsManager& presets);
    /// Points a droplet at this version of the application, and writes the launcher beside it that starts
    /// `program`. False when this is no droplet of the program, when there is something else in the
    /// launcher's place, or when a file could not be written; but for the last it is then as it was. Paths
    /// in bytes.
    [[nodiscard]] static bool migrateDroplet(const std::string& path, const std::string& program);
};

} // namespace tavrin
