#include "documents/DropletBundle.h"

#include "platform/desktop/ResourceFolder.h"
#include "platform/files/FileSystem.h"
#include "platform/propertylists/PropertyList.h"
#include "support/text/PathParts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace tavrin {

namespace {

constexpr std::string_view suffix = ".app";
constexpr std::string_view settingsPlace = "Contents/Resources/Settings.plist";
constexpr std::string_view iconPlace = "Contents/Resources/Icon.png";
constexpr std::size_t sizeLimit = std::size_t{64} * 1024 * 1024;

// What bundles hold, those of other systems included.
constexpr std::array<std::string_view, 4> rootNames{"Contents", ".directory", ".DS_Store", "Icon\r"};
constexpr std::array<std::string_view, 9> contentsNames{"Info.plist",     "PkgInfo",       "version.plist",
                                                        "MacOS",          "Resources",     "Frameworks",
                                                        "_CodeSignature", "CodeResources", ".DS_Store"};
constexpr std::array<std::string_view, 4> resourceNames{"Settings.plist", "Icon.png", "Icon.icns",
                                                        ".DS_Store"};

template <std::size_t count>
bool holdsOnly(const std::string& folder, const std::array<std::string_view, count>& names,
               std::string_view furtherSuffix) {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (std::ranges::find(names, name) == names.end() &&
            (furtherSuffix.empty() || !name.ends_with(furtherSuffix)))
            return false;
    }
    return !error || error == std::errc::no_such_file_or_directory;
}

std::string reasonFor(int error) {
    switch (error) {
    case EFBIG:
        return "the file is larger than 64 MiB";
    case ELOOP:
    case ENOTDIR:
    case EINVAL:
    case EISDIR:
        return "it is not a file of the droplet itself";
    default:
        return fmt::format("the file cannot be read: {}", std::generic_category().message(error));
    }
}

bool isDictionary(const PropertyDictionary& list, std::string_view key) {
    const PropertyValue* value = find(list, key);
    return value && value->asDictionary();
}

} // namespace

DropletBundle::DropletBundle(std::string bundlePath) : folder(std::move(bundlePath)) {
    while (folder.size() > 1 && folder.ends_with('/'))
        folder.pop_back();
}

DropletBundle DropletBundle::forChosenPath(const std::string& path) {
    return DropletBundle(std::string(withoutExtension(path)) + std::string(suffix));
}

std::optional<DropletBundle> DropletBundle::ofSettings(const std::string& settingsPath) {
    if (!settingsPath.starts_with('/') || !settingsPath.ends_with("/" + std::string(settingsPlace)))
        return std::nullopt;
    DropletBundle bundle(settingsPath.substr(0, settingsPath.size() - settingsPlace.size() - 1));
    if (!bundle.path().ends_with(suffix))
        return std::nullopt;
    return bundle;
}

std::string DropletBundle::name() const {
    std::string name(lastComponent(folder));
    if (name.ends_with(suffix))
        name.resize(name.size() - suffix.size());
    return name;
}

std::string DropletBundle::enclosingFolder() const {
    const std::string_view enclosing = PathParts(folder).folder;
    return std::string(enclosing.empty() ? "." : enclosing);
}

std::string DropletBundle::settingsPath() const { return fmt::format("{}/{}", folder, settingsPlace); }
std::string DropletBundle::iconPath() const { return fmt::format("{}/{}", folder, iconPlace); }
std::string DropletBundle::launcherPath() const {
    return fmt::format("{}{}.desktop", folderPrefix(folder), name());
}

bool DropletBundle::isFolder() const {
    std::error_code error;
    return std::filesystem::is_directory(folder, error);
}

std::variant<PropertyDictionary, RecipeError> DropletBundle::readSettings() const {
    const auto failure = [](const std::string& reason) {
        return RecipeError{fmt::format("{}: {}", settingsPlace, reason)};
    };
    std::string bytes;
    if (const int error = readContainedFile(folder, settingsPlace, bytes, sizeLimit))
        return failure(reasonFor(error));
    PropertyList::Result list = PropertyList::fromBytes(bytes);
    if (const auto* error = std::get_if<PropertyListError>(&list))
        return failure(error->message);
    PropertyDictionary* root = std::get<PropertyValue>(list).asDictionary();
    if (!root)
        return failure("expected a dictionary at the root");
    return std::move(*root);
}

RecipeFile::Result DropletBundle::readRecipe() const {
    std::variant<PropertyDictionary, RecipeError> settings = readSettings();
    if (const auto* error = std::get_if<RecipeError>(&settings))
        return *error;
    const auto& root = std::get<PropertyDictionary>(settings);
    if (!find(root, dropletKey::host))
        return RecipeError{fmt::format("{}: there is no \"Host Application Settings\"", settingsPlace)};
    // A droplet is read as one, whatever else its file may hold.
    return RecipeFile::fromPropertyList(
        PropertyDictionary{{dropletKey::host, *find(root, dropletKey::host)}});
}

bool DropletBundle::isDroplet() const {
    std::error_code error;
    if (std::filesystem::symlink_status(folder, error).type() != std::filesystem::file_type::directory)
        return false;
    const std::variant<PropertyDictionary, RecipeError> settings = readSettings();
    const auto* root = std::get_if<PropertyDictionary>(&settings);
    return root && isDictionary(*root, dropletKey::launcher) && isDictionary(*root, dropletKey::host);
}

bool DropletBundle::holdsOnlyItsOwn() const {
    return holdsOnly(folder, rootNames, "") && holdsOnly(folder + "/Contents", contentsNames, "") &&
           holdsOnly(folder + "/Contents/Resources", resourceNames, ".lproj");
}

bool DropletBundle::remove() const {
    if (!isDroplet() || !holdsOnlyItsOwn())
        return false;
    std::error_code error;
    std::filesystem::remove_all(folder, error);
    return !error;
}

std::string DropletBundle::templateFolder() { return resourcePath("droplet"); }
std::string DropletBundle::iconResource() { return templateFolder() + "/" + std::string(iconPlace); }

} // namespace tavrin
