#pragma once

#include "documents/DropletBundle.h"
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
    static constexpr const char* recordKey = dropletKey::record; ///< of the user defaults

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

/// What a droplet's launcher asks of the program: the droplet, and the files that were dropped on it.
struct DropletRequest {
    std::string bundlePath;         ///< absolute, in bytes; empty where it was not told
    std::string launcherPath;       ///< the same
    std::vector<std::string> files; ///< absolute, in bytes

    /// The start that such a request leads to.
    struct Start {
        PropertyDictionary record; ///< to be put under DropletHandOver::recordKey, for this process alone
        bool isSilent = false;     ///< nothing is to be shown
        std::vector<std::string> missingFiles;
    };
    struct Failure {
        std::string message;   ///< a whole text for the user
        bool isSilent = false; ///< nothing is to be shown
    };

    /// The droplet by its path, else the one beside its launcher.
    [[nodiscard]] std::optional<DropletBundle> bundle() const;
    /// Reads and checks the droplet. Files that are gone, or whose names were changed on their way here, are
    /// sorted out; where none is left, that is a failure too.
    [[nodiscard]] std::variant<Start, Failure> start() const;
    /// What to tell of files that are not there.
    [[nodiscard]] static std::string missingText(const std::vector<std::string>& missing);
};

} // namespace tavrin
