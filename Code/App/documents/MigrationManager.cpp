#include "documents/MigrationManager.h"

#include "documents/DropletBundle.h"
#include "documents/DropletLauncher.h"
#include "documents/PresetsManager.h"
#include "platform/files/FileSystem.h"
#include "platform/files/FolderEntries.h"
#include "platform/files/ItemCopy.h"
#include "platform/propertylists/PropertyList.h"
#include "support/application/DebugLog.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace tavrin {

namespace {

/// Of the data folders of both editions of the previous version.
constexpr std::array<std::string_view, 2> previousFolders{"Morvane 8/", "Tavrin 8/"};

/// The application names of the editions have no word in common, so one of the two tells a droplet of theirs.
constexpr std::array<std::u16string_view, 2> editionNames{u"Tavrin", u"Morvane"};

FileSystem& files() { return FileSystem::sharedInstance(); }

FolderEntries entriesOf(const std::string& folder) {
    std::unique_ptr<OpenFolder> open;
    FolderEntries entries;
    if (files().openFolder(folder, open) != 0 || open->entries(entries) != 0)
        entries.clear();
    return entries;
}

bool isOfKind(const std::string& path, FileStatus::Kind kind) {
    FileStatus status;
    return files().status(path, status) == 0 && status.kind == kind;
}

/// The folder with a droplet's settings and icon. Absent where a link on the way leads out of the bundle.
std::optional<std::string> resourcesOf(const std::string& bundle) {
    std::string folder = bundle;
    for (const char* part : {"/Contents", "/Resources"}) {
        folder += part;
        if (!isOfKind(folder, FileStatus::Kind::folder))
            return std::nullopt;
    }
    return folder;
}

bool namesAnEdition(const PropertyDictionary& dropletSettings) {
    const PropertyValue* location = find(dropletSettings, dropletKey::defaultLocation);
    const std::optional<std::u16string> path = location ? textOrData(*location) : std::nullopt;
    return path && std::ranges::any_of(editionNames, [&](std::u16string_view name) {
               return path->find(name) != std::u16string::npos;
           });
}

/// The settings pointed at this version; absent when they are not those of a droplet of ours.
std::optional<PropertyDictionary> repointedSettings(const DropletBundle& bundle) {
    std::variant<PropertyDictionary, RecipeError> settings = bundle.readSettings();
    auto* root = std::get_if<PropertyDictionary>(&settings);
    const auto found = root ? root->find(dropletKey::launcher) : PropertyDictionary::iterator();
    if (!root || found == root->end())
        return std::nullopt;
    PropertyDictionary* dropletSettings = found->second.asDictionary();
    if (!dropletSettings || !namesAnEdition(*dropletSettings))
        return std::nullopt;
    dropletSettings->insert_or_assign(dropletKey::defaultLocation, u"/Applications/Tavrin 9.app");
    dropletSettings->insert_or_assign(dropletKey::locationKey, u"net.calderwick.tvrn9");
    return std::move(*root);
}

/// The old version had its icon in another form.
void replaceIcon(const DropletBundle& bundle, const std::string& oldIcon) {
    (void)files().removeFile(oldIcon);
    (void)files().removeFile(bundle.iconPath());
    (void)copyItem(DropletBundle::iconResource(), bundle.iconPath());
}

} // namespace

std::vector<PresetMigration> MigrationManager::migratePresets(PresetsManager& presets,
                                                              const std::string& dataFolder) {
    const std::string siblings(folderPrefix(dataFolder));
    std::vector<PresetMigration> results;
    for (const std::string_view name : previousFolders) {
        const std::string folder = siblings + std::string(name);
        if (files().exists(folder))
            results.push_back(migratePresetsFolderAt(folder, presets));
    }
    return results;
}

PresetMigration MigrationManager::migratePresetsFolderAt(const std::string& folder, PresetsManager& presets) {
    const std::string source = folder + (folder.ends_with('/') ? "Presets" : "/Presets");
    PresetMigration result{folder, true, {}};
    const FolderEntries entries = entriesOf(source);
    // Made at the start, but it may have gone since.
    if (!entries.empty())
        (void)files().makeFolders(presets.localFolder());
    for (const FolderEntry entry : entries) {
        const std::string name = "/" + std::string(entry.name);
        if (const int error = copyItem(source + name, presets.localFolder() + name)) {
            debugLog("could not copy {}: {}", source + name, std::strerror(error));
            result.wasCopied = false;
            result.failedEntry = entry.name;
            break;
        }
    }
    presets.loadPresets();
    return result;
}

bool MigrationManager::migrateDroplet(const std::string& path, const std::string& program) {
    const DropletBundle bundle(path);
    const std::optional<std::string> resources = resourcesOf(bundle.path());
    if (!resources)
        return false;
    const std::string oldIcon = *resources + "/Icon.icns";
    if (!isOfKind(oldIcon, FileStatus::Kind::file) && !isOfKind(bundle.iconPath(), FileStatus::Kind::file))
        return false;
    const std::optional<PropertyDictionary> settings = repointedSettings(bundle);
    const DropletLauncher launcher(bundle, program);
    if (!settings || !launcher.mayBeWritten())
        return false;
    const auto written = PropertyList::writeAtomically(*settings, bundle.settingsPath());
    if (!std::holds_alternative<std::monostate>(written))
        return false;
    replaceIcon(bundle, oldIcon);
    if (launcher.write())
        return false;
    launcher.setTrustMarks();
    return true;
}

} // namespace tavrin
