#include "shell/start/MigrationCommands.h"

#include "documents/DropletLauncher.h"
#include "platform/files/FileSystem.h"
#include "shell/asking/FrontEnd.h"

#include <fmt/format.h>

#include <set>

namespace tavrin {

namespace {

bool isFolder(const std::string& path) {
    FileStatus status;
    return FileSystem::sharedInstance().followedStatus(path, status) == 0 &&
           status.kind == FileStatus::Kind::folder;
}

/// The folder that holds "Presets", whichever of the two was chosen; absent where there is none.
std::optional<std::string> folderOfPresets(std::string chosen) {
    while (chosen.size() > 1 && chosen.ends_with('/'))
        chosen.pop_back();
    if (isFolder(chosen + "/Presets"))
        return chosen;
    constexpr std::string_view name = "/Presets";
    if (chosen.ends_with(name) && isFolder(chosen))
        return chosen.substr(0, chosen.size() - name.size() + 1);
    return std::nullopt;
}

/// What a chosen path stands for: a bundle itself, or a launcher of one.
std::string bundleOf(const std::string& path) {
    if (isFolder(path))
        return DropletBundle(path).path();
    return DropletLauncher::bundleOf(path).value_or(DropletLauncher::bundleBeside(path)).path();
}

Alert nothingFound(std::string title) {
    return {.kind = AlertKind::presetMigration,
            .style = AlertStyle::informational,
            .title = std::move(title),
            .text =
                "To take presets from elsewhere, choose \"Migrate Presets from Folder\" and the folder of "
                "the previous version, which holds a folder named \"Presets\".",
            .buttons = {"OK"}};
}

} // namespace

void MigrationCommands::migratePresets() {
    std::vector<PresetMigration> results = MigrationManager::migratePresets(presets, options.dataFolder);
    if (results.empty()) {
        services.frontEnd.showAlert(
            nothingFound("No presets of the previous version were found on this computer."),
            [](AlertAnswer) {});
        return;
    }
    options.presetsChanged();
    tellAll(std::move(results));
}

void MigrationCommands::migratePresetsFromFolder() {
    services.frontEnd.askForFolder(
        {"Locate Presets", "Please locate the folder of the previous version that holds \"Presets\".",
         "Migrate"},
        [this](std::optional<std::string> folder) {
            if (folder)
                migratePresetsIn(*folder);
        });
}

void MigrationCommands::migratePresetsIn(const std::string& chosen) {
    const std::optional<std::string> folder = folderOfPresets(chosen);
    if (!folder) {
        services.frontEnd.showAlert(nothingFound(fmt::format("There are no presets at {}.", chosen)),
                                    [](AlertAnswer) {});
        return;
    }
    const PresetMigration result = MigrationManager::migratePresetsFolderAt(*folder, presets);
    options.presetsChanged();
    tell(result, [] {});
}

/// One panel after the other.
void MigrationCommands::tellAll(std::vector<PresetMigration> results) {
    if (results.empty())
        return;
    const PresetMigration first = std::move(results.front());
    results.erase(results.begin());
    tell(first, [this, results = std::move(results)] { tellAll(results); });
}

void MigrationCommands::tell(const PresetMigration& result, std::function<void()> then) {
    Alert alert{.kind = AlertKind::presetMigration,
                .style = AlertStyle::informational,
                .title = fmt::format("Presets found at {} were successfully migrated.", result.folder),
                .text = "",
                .buttons = {"OK"}};
    if (!result.wasCopied) {
        alert.title =
            fmt::format("At least one of the preset files found at {} could not be migrated.", result.folder);
        alert.text = "This could be the result of running the migration process multiple times.";
    }
    services.frontEnd.showAlert(alert, [then = std::move(then)](AlertAnswer) { then(); });
}

void MigrationCommands::migrateDroplet() {
    services.frontEnd.askForDroplets({"Locate Droplets",
                                      "Please locate one or more droplets you want to migrate to version 9.",
                                      "Migrate"},
                                     [this](const std::optional<std::vector<std::string>>& paths) {
                                         if (paths && !paths->empty())
                                             migrateDroplets(*paths);
                                     });
}

void MigrationCommands::migrateDroplets(const std::vector<std::string>& paths) {
    std::set<std::string> bundles;
    for (const std::string& path : paths)
        bundles.insert(bundleOf(path));
    bool areAllDone = true;
    for (const std::string& bundle : bundles)
        areAllDone = MigrationManager::migrateDroplet(bundle, options.program) && areAllDone;
    Alert alert{.kind = AlertKind::dropletMigration,
                .style = AlertStyle::informational,
                .title = "Success",
                .text = "All droplets were successfully converted.",
                .buttons = {"OK"}};
    if (!areAllDone) {
        alert.style = AlertStyle::critical;
        alert.title = "An error occurred";
        alert.text = "At least one droplet could not be converted correctly.";
    }
    services.frontEnd.showAlert(alert, [](AlertAnswer) {});
}

} // namespace tavrin
