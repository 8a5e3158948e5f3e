#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tavrin {

/// The presets of the user, as the preset menu shows them. Reads only: makes no folders.
class SavedPresets {
  public:
    struct Preset {
        std::u16string name;
        std::u16string description;
        std::string path; ///< in bytes
    };

    SavedPresets();

    /// By name.
    [[nodiscard]] const std::vector<Preset>& all() const { return presets; }
    /// Of the first preset with this name (in bytes).
    [[nodiscard]] std::optional<std::string> pathOf(const std::string& name) const;

  private:
    std::vector<Preset> presets;
};

} // namespace tavrin
