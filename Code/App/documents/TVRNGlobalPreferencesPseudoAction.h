#pragma once

#include "actions/BaseAction.h"
#include "store/queries/FilterManager.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace tavrin {

class RunLoop;

/// The settings of the application that are no parameters of a rename action: an action that renames nothing
/// and lends them its keys, defaults, observers and storage.
///
/// Written on the thread that made the object, the main thread, and read from any thread: other threads read
/// a copy that is published with each change. An absent key gives the value that each accessor tells.
class TVRNGlobalPreferencesPseudoAction : public BaseAction {
  public:
    TVRNGlobalPreferencesPseudoAction();
    /// Starts from these values alone; accessors then tell what counts for the keys that are absent.
    explicit TVRNGlobalPreferencesPseudoAction(const PropertyDictionary& values);
    ~TVRNGlobalPreferencesPseudoAction() override;

    /// With a run loop (not owned), values set on another thread are carried to the main thread while the
    /// caller waits; without one they are refused (ActionError).
    void setRunLoop(RunLoop* loop) { runLoop = loop; }

    [[nodiscard]] std::string actionName() const override { return "TVRN global settings"; }
    [[nodiscard]] PropertyDictionary defaultParameters() const override;
    /// As in the base, but automatic sorting is on afterwards: it is switched off for a session only.
    void setParameterList(const PropertyDictionary& list) override;
    void setValue(const std::optional<PropertyValue>& value, const std::string& key) override;

    /// Every key that means something, each with a value of its type.
    [[nodiscard]] static PropertyDictionary knownSettings();
    /// What is wrong with a number for that setting, which means nothing to it; empty for all else. Stored
    /// settings are taken as they are, whatever they hold: this is for those that somebody gives.
    [[nodiscard]] static std::string problemOf(std::string_view key, const PropertyValue& value);

    // Reading by key, any thread. They stand for the operations of the base, which only the main thread may
    // use.
    [[nodiscard]] std::optional<PropertyValue> valueForKey(std::string_view key) const override;
    [[nodiscard]] std::int32_t getParamInt(std::string_view key, std::int32_t defaultTo) const;
    [[nodiscard]] std::u16string getParamString(std::string_view key) const;
    [[nodiscard]] PropertyDictionary parameterList() const;

    [[nodiscard]] std::int32_t getPreviewPaneWidthAsInt() const { return getParamInt("previewPaneWidth", 0); }
    void setPreviewPaneWidthAsInt(std::int32_t width) { setValue(width, "previewPaneWidth"); }
    [[nodiscard]] std::int32_t getPreviewModeAsInt() const { return getParamInt("previewMode", 0); }
    void setPreviewModeAsInt(std::int32_t mode) { setValue(mode, "previewMode"); }
    [[nodiscard]] bool getPreviewActive() const { return true; }
    [[nodiscard]] std::int32_t shouldCreateSilentDroplets() const { return getParamInt("silentDroplet", 0); }
    /// A path in bytes, or empty.
    [[nodiscard]] std::string lastAddDirectory() const;
    void setLastAddDirectory(const std::string& path);
    [[nodiscard]] bool shouldPreviewConflictResolution() const { return isOn("previewConflictResolution"); }
    [[nodiscard]] bool shouldPreventDropletEditing() const { return isOn("lockedDroplet"); }
    [[nodiscard]] bool shouldContinueAfterRename() const { return isOn("continueAfterRename"); }
    /// Tells no observer.
    void setShouldContinueAfterRename(bool shouldContinue);
    [[nodiscard]] bool shouldShowQuickLookThumbnail() const { return isOn("quickLookThumbnail"); }
    [[nodiscard]] bool shouldRetrieveEXIFInformation() const { return isOn("retrieveEXIFInformation"); }
    [[nodiscard]] bool automaticSorting() const { return isOn("automaticSorting"); }
    void setAutomaticSorting(bool automatic) { setValue(automatic, "automaticSorting"); }
    [[nodiscard]] bool shouldPreventAccidentalITunesLibraryDamage() const {
        return isOn("preventAccidentalITunesLibraryDamage");
    }
    [[nodiscard]] bool shouldPreventAccidentalIPhotoLibraryDamage() const {
        return isOn("preventAccidentalIPhotoLibraryDamage");
    }
    /// Only the value 1 counts, as in shouldShowSummary.
    [[nodiscard]] bool shouldInteract() const { return getParamInt("interactiveMode", 0) == 1; }
    [[nodiscard]] std::int32_t shouldQuitAfterRename() const { return getParamInt("quitAfterRename", 0); }
    [[nodiscard]] bool shouldShowSummary() const { return getParamInt("showSummary", 0) == 1; }
    [[nodiscard]] std::int32_t getRenameMode() const { return getParamInt("renameMode", 2); }
    void setLionMode() { setValue(0, "renameMode"); }
    [[nodiscard]] std::int32_t shouldShowPath() const { return getParamInt("showPath", 0); }
    [[nodiscard]] std::int32_t shouldShowCurrentName() const { return getParamInt("showCurrentName", 1); }
    [[nodiscard]] std::int32_t shouldProcessFiles() const { return getParamInt("processFiles", 1); }
    void setShouldProcessFiles(std::int32_t value) { setValue(value, "processFiles"); }
    [[nodiscard]] std::int32_t shouldProcessFolders() const { return getParamInt("processFolders", 1); }
    void setShouldProcessFolders(std::int32_t value) { setValue(value, "processFolders"); }
    [[nodiscard]] std::int32_t shouldProcessSubfolders() const { return getParamInt("processSubfolders", 0); }
    void setShouldProcessSubfolders(std::int32_t value) { setValue(value, "processSubfolders"); }
    [[nodiscard]] std::int32_t shouldCopyFileComments() const { return getParamInt("copyFileComments", 1); }
    /// Sums unless told otherwise, although new settings say otherwise.
    [[nodiscard]] std::int32_t shouldCalculateAccurateFolderSize() const {
        return getParamInt("accurateFolderSize", 1);
    }
    /// Whether each run leaves a record by which it can be taken back.
    [[nodiscard]] bool shouldKeepHistory() const { return getParamInt("keepHistory", 1) != 0; }
    [[nodiscard]] std::int32_t shouldShowMultistepDrawer() const { return getParamInt("multistep", 0); }
    void setShowMultistepDrawer(std::int32_t value) { setValue(value, "multistep"); }

    // What conflict resolution reads.
    [[nodiscard]] std::int32_t conflictResolutionScheme() const {
        return getParamInt("conflictResolutionScheme", 0);
    }
    [[nodiscard]] std::int32_t conflictResolutionOrder1() const {
        return getParamInt("conflictResolutionOrder1", 0);
    }
    [[nodiscard]] std::int32_t conflictResolutionOrder2() const {
        return getParamInt("conflictResolutionOrder2", 0);
    }
    [[nodiscard]] std::int32_t conflictResolutionOrder3() const {
        return getParamInt("conflictResolutionOrder3", 0);
    }
    [[nodiscard]] bool conflictResolutionDontChangeFirst() const {
        return isOn("conflictResolutionDontChangeFirst");
    }

    /// The three settings that decide which rows take part, all of one moment.
    [[nodiscard]] ItemFilter itemFilter() const;

  private:
    using Snapshot = std::shared_ptr<const PropertyDictionary>;

    void setValueOnOwner(const std::optional<PropertyValue>& value, const std::string& key);
    [[nodiscard]] bool isOn(std::string_view key) const;
    /// The values of this moment for the calling thread.
    [[nodiscard]] Snapshot snapshot() const;
    void publish(PropertyDictionary values);
    void publishPresentValues() { publish(BaseAction::parameterList()); }

    const std::thread::id owner;
    RunLoop* runLoop = nullptr;
    mutable std::mutex publishing; ///< guards `published`
    Snapshot published;
};

} // namespace tavrin
