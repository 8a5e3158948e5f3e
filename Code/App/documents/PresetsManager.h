#pragma once

#include "support/values/PropertyValue.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class CompositeRenameAction;

/// What became of a command on presets.
struct PresetOutcome {
    std::optional<std::string> error; ///< for the user: what has happened, and why; absent when all went well
    explicit operator bool() const { return !error; }
};

/// The saved recipes: one property list file per preset, named after it. Indexes count in the list of the
/// last loadPresets; one that is not in it finds nothing. Names are texts, paths are bytes. Main thread.
class PresetsManager {
  public:
    /// Presets lie in `localFolder`; `globalFolder` is made but never read. `compositeAction` gives the chain
    /// to save and to change.
    PresetsManager(std::string localFolder, std::string globalFolder,
                   std::function<CompositeRenameAction&()> compositeAction);
    ~PresetsManager();
    PresetsManager(const PresetsManager&) = delete;
    PresetsManager& operator=(const PresetsManager&) = delete;

    /// The instance alive (registered by the constructor, withdrawn by the destructor).
    static PresetsManager& sharedInstance();

    void startup();
    void createPresetsFolders();
    /// The preset files of the folder and all below it, links not followed.
    void loadPresets();
    void clearPresets() { presetFilePaths.clear(); }

    [[nodiscard]] const std::string& localFolder() const { return folder; }
    [[nodiscard]] const std::string& globalFolder() const { return sharedFolder; }

    [[nodiscard]] std::size_t count() const { return presetFilePaths.size(); }
    [[nodiscard]] std::vector<std::u16string> getPresetTitles() const;
    /// Empty for an index that is not in the list, as in the next two.
    [[nodiscard]] std::u16string nameAtIndex(std::size_t index) const;
    [[nodiscard]] std::string pathAtIndex(std::size_t index) const;
    /// The user's description; empty when there is none.
    [[nodiscard]] std::u16string descriptionAtIndex(std::size_t index) const;
    /// The file's content, read anew; absent when it can't be read.
    [[nodiscard]] std::optional<PropertyDictionary> enclosureAtIndex(std::size_t index) const;
    [[nodiscard]] static std::optional<PropertyDictionary> enclosureAtPath(const std::string& path);

    /// The name as a file may bear it: no "/" that would break the path, no "." that would begin a suffix.
    [[nodiscard]] static std::u16string cleanedName(std::u16string_view name);
    /// Why no file can bear a name, in one sentence; absent where one can.
    [[nodiscard]] static std::optional<std::string> problemOfName(std::u16string_view name);
    /// Absent for a name that no file can bear.
    [[nodiscard]] std::optional<std::string> computePathForName(std::u16string_view name) const;
    /// False for an absent name.
    [[nodiscard]] bool isNameIsStillAvailable(const std::optional<std::u16string>& name) const;

    /// Replaces a preset of the same name without a question.
    PresetOutcome createPresetFromCurrentActionsWithName(std::u16string_view name,
                                                         const std::optional<std::u16string>& description);
    /// Everything is checked first: an unreadable file, a file without a chain, a malformed chain or one with
    /// an unknown action changes nothing.
    PresetOutcome applyPresetAtIndex(std::size_t index);
    PresetOutcome deletePresetAtIndex(std::size_t index);
    PresetOutcome deletePreset(std::u16string_view name);
    /// The old file goes when the new one is written, and not at all where that fails. Another preset of the
    /// new name is never replaced.
    PresetOutcome changeDescription(const std::optional<std::u16string>& description,
                                    const std::string& atPath);
    PresetOutcome changeNameAtPath(const std::string& path, std::u16string_view toNewNawe,
                                   const std::optional<std::u16string>& description);

  private:
    /// The content of a preset with another description; absent when it can't be read.
    [[nodiscard]] static std::optional<PropertyDictionary>
    contentWith(const std::optional<std::u16string>& description, const std::string& path);

    std::string folder;
    std::string sharedFolder;
    std::function<CompositeRenameAction&()> compositeAction;
    std::vector<std::string> presetFilePaths;
};

} // namespace tavrin
