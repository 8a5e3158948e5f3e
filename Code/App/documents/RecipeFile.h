#pragma once

#include "support/values/PropertyValue.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace tavrin {

/// The keys of a droplet's settings file, and of the record that a droplet hands over.
namespace dropletKey {
inline constexpr const char* record = "droplet settings"; ///< of the user defaults
// The file: what starts the program, and what the program is to do.
inline constexpr const char* launcher = "Droplet Settings";
inline constexpr const char* defaultLocation = "default location";
inline constexpr const char* locationKey = "location key";
inline constexpr const char* temporaryKey = "temporary settings key";
inline constexpr const char* host = "Host Application Settings";
// In both.
inline constexpr const char* chain = "composite action";
inline constexpr const char* globalSettings = "global settings";
// The record.
inline constexpr const char* settingsPath = "settings plist path";
inline constexpr const char* fileList = "file list";
inline constexpr const char* version = "Version";
} // namespace dropletKey

/// A chain of steps as a file holds it, with the global settings that come with it, if any.
struct Recipe {
    PropertyDictionary flatParameterList;
    std::optional<PropertyDictionary> globalSettings;
};

/// Why a recipe was refused, in one sentence that begins with the way to the culprit.
struct RecipeError {
    std::string message;
};

/// Reads recipes from property lists that come from outside, and checks all of them before anything is done:
/// names of actions against the catalogue, kinds of values against what actions and settings hold.
struct RecipeFile {
    using Result = std::variant<Recipe, RecipeError>;
    using CheckedList = std::variant<PropertyDictionary, RecipeError>;

    /// A preset file, a flat parameter list by itself, or a droplet's settings. At least one step. `path` in
    /// bytes.
    static Result read(const std::string& path);
    static Result fromPropertyList(const PropertyValue& root);

    /// A flat parameter list in the form that a composite action takes; it may be without steps. `keyPath`
    /// is where the list stands in its file, empty for the root.
    static CheckedList checkedFlatParameterList(const PropertyValue& list, std::string_view keyPath);
    /// A dictionary of texts and numbers.
    static CheckedList checkedParameterList(const PropertyValue& list, std::string_view keyPath);
};

} // namespace tavrin
