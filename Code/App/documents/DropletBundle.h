#pragma once

#include "documents/RecipeFile.h"
#include "support/values/PropertyValue.h"

#include <optional>
#include <string>
#include <variant>

namespace tavrin {

/// A droplet on the disk: a folder "NAME.app" that keeps a recipe with its settings, and beside it the
/// launcher "NAME.desktop" that takes the files. All paths in bytes.
class DropletBundle {
  public:
    explicit DropletBundle(std::string bundlePath);
    /// The bundle that a name in a save panel stands for: its last extension gives way to ".app".
    [[nodiscard]] static DropletBundle forChosenPath(const std::string& path);
    /// The bundle in which this settings file lies; absent where it lies as in no bundle.
    [[nodiscard]] static std::optional<DropletBundle> ofSettings(const std::string& settingsPath);

    [[nodiscard]] const std::string& path() const { return folder; }
    /// Without ".app".
    [[nodiscard]] std::string name() const;
    [[nodiscard]] std::string enclosingFolder() const;
    [[nodiscard]] std::string settingsPath() const;
    [[nodiscard]] std::string iconPath() const;
    [[nodiscard]] std::string launcherPath() const;

    /// Whether there is a folder; a link to one counts.
    [[nodiscard]] bool isFolder() const;
    /// The root of the settings file. The file must be a regular one that lies in the bundle itself.
    [[nodiscard]] std::variant<PropertyDictionary, RecipeError> readSettings() const;
    /// The recipe in it, checked in full.
    [[nodiscard]] RecipeFile::Result readRecipe() const;
    /// Whether this is a droplet of ours: a folder, not a link, whose settings have both their parts.
    [[nodiscard]] bool isDroplet() const;
    /// Whether there is nothing in the bundle but what belongs to one. File managers move what is dropped on
    /// a folder into it.
    [[nodiscard]] bool holdsOnlyItsOwn() const;
    /// Removes a droplet with nothing but its own in it; all else stays untouched (false).
    [[nodiscard]] bool remove() const;

    /// The icon of droplets among the program's own files, and the folder that every bundle is a copy of.
    [[nodiscard]] static std::string iconResource();
    [[nodiscard]] static std::string templateFolder();

  private:
    std::string folder;
};

} // namespace tavrin
