#pragma once

#include "documents/RecipeFile.h"
#include "support/values/PropertyValue.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace tavrin {

class UserDefaults;

/// What a droplet leaves for the application that it starts: its recipe and settings, where it keeps them,
/// and the files that were dropped on it.
struct DropletHandOver {
    static constexpr const char* recordKey = "droplet settings"; ///< of the user defaults

    std::optional<PropertyDictionary> compositeAction;
    std::optional<PropertyDictionary> globalSettings;
    std::string settingsPath;          ///< in bytes; empty when it was not told
    std::vector<std::string> fileList; ///< in bytes; empty when the droplet was opened by itself
    bool hasVersion = false;           ///< the droplet is of the present form

    /// Whether the user defaults hold a record at all.
    [[nodiscard]] static bool isPresent(const UserDefaults& defaults);
    /// The record, checked as a recipe is.
    [[nodiscard]] static std::variant<DropletHandOver, RecipeError> read(const UserDefaults& defaults);
    /// Makes sure that the next start does not see the record again.
    static void clear(UserDefaults& defaults);
};

} // namespace tavrin
