#pragma once

#include "actions/BaseAction.h"
#include "documents/Settings.h"

#include <cstdint>
#include <mutex>
#include <string>

namespace tavrin {

/// The settings of the application that are no parameters of a rename action: an action that renames nothing
/// and lends them its keys, defaults, observers and storage. Main thread, but for `values`.
class TVRNGlobalPreferencesPseudoAction : public BaseAction {
  public:
    TVRNGlobalPreferencesPseudoAction();
    /// Starts from these values alone.
    explicit TVRNGlobalPreferencesPseudoAction(const PropertyDictionary& values);

    [[nodiscard]] std::string actionName() const override { return "TVRN global settings"; }
    [[nodiscard]] PropertyDictionary defaultParameters() const override;
    /// As in the base, but automatic sorting is on afterwards: it is switched off for a session only.
    void setParameterList(const PropertyDictionary& list) override;

    /// The settings of this moment; new ones are in place before an observer is told of them. Any thread.
    [[nodiscard]] Settings values() const;

    [[nodiscard]] static constexpr bool getPreviewActive() { return true; }
    /// A path in bytes, or empty.
    [[nodiscard]] std::string lastAddDirectory() const;
    void setLastAddDirectory(const std::string& path);
    /// Tells no observer: names do not depend on it.
    void setPreviewPaneWidthAsInt(std::int32_t width);
    void setPreviewModeAsInt(std::int32_t mode) { setValue(mode, settingKey::previewMode); }
    /// Tells no observer.
    void setShouldContinueAfterRename(bool shouldContinue);
    void setAutomaticSorting(bool automatic) { setValue(automatic, settingKey::automaticSorting); }
    void setLionMode() { setValue(0, settingKey::renameMode); }
    void setShouldProcessFiles(std::int32_t value) { setValue(value, settingKey::processFiles); }
    void setShouldProcessFolders(std::int32_t value) { setValue(value, settingKey::processFolders); }
    void setShouldProcessSubfolders(std::int32_t value) { setValue(value, settingKey::processSubfolders); }
    void setShowMultistepDrawer(std::int32_t value) { setValue(value, settingKey::multistep); }

  protected:
    void valuesHaveChanged() override;

  private:
    mutable std::mutex publishing; ///< guards `published`
    Settings published;
};

} // namespace tavrin
