#pragma once

#include "documents/recipe/RecipeText.h"
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
    std::u16string description = {};            ///< of a preset
    std::vector<RecipeText::Remark> notes = {}; ///< on its text, if it was one
};

/// Why a recipe was refused, in one sentence that begins with the way to the culprit.
struct RecipeError {
    std::string message;
    std::optional<RecipeText::Remark> remark = {}; ///< of a recipe that is a text: what is wrong where
};

/// Reads recipes that come from outside, as text or as property lists, and checks all of them before anything
/// is done: names of actions against the catalogue, kinds of values against what actions and settings hold.
struct RecipeFile {
    using Result = std::variant<Recipe, RecipeError>;
    using CheckedList = std::variant<PropertyDictionary, RecipeError>;

    /// Which recipes are taken: such as can be run, or also such as a newer version has left.
    enum class Accept { runnable, anything };

    /// A preset file, a flat parameter list by itself, a droplet's settings, or a recipe as text. At least
    /// one step. `path` in bytes.
    static Result read(const std::string& path, Accept accept = Accept::runnable);
    static Result fromBytes(std::string_view bytes, Accept accept = Accept::runnable);
    static Result fromText(std::u16string_view text, Accept accept = Accept::runnable);
    static Result fromPropertyList(const PropertyValue& root, Accept accept = Accept::runnable);

    /// A flat parameter list in the form that a composite action takes; it may be without steps. `keyPath`
    /// is where the list stands in its file, empty for the root.
    static CheckedList checkedFlatParameterList(const PropertyValue& list, std::string_view keyPath,
                                                Accept accept = Accept::runnable);
    /// A dictionary of texts and numbers.
    static CheckedList checkedParameterList(const PropertyValue& list, std::string_view keyPath,
                                            Accept accept = Accept::runnable);
};

} // namespace tavrin
