#pragma once

#include "store/queries/FilterManager.h"
#include "support/values/PropertyValue.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tavrin {

/// The settings of one moment: what stands under each key, read as a number or as a truth, and what counts
/// where nothing stands there. A run takes them once and goes by them to its end.
struct Settings {
    // Truths, also of the texts "yes" and "true".
    bool shouldRetrieveEXIFInformation = false;
    bool shouldShowQuickLookThumbnail = false;
    bool shouldPreventAccidentalITunesLibraryDamage = false;
    bool shouldPreventAccidentalIPhotoLibraryDamage = false;
    bool shouldPreviewConflictResolution = false;
    bool automaticSorting = false;
    bool shouldPreventDropletEditing = false;
    bool shouldContinueAfterRename = false;
    bool conflictResolutionDontChangeFirst = false;

    // Numbers; those that say whether something is on, say so by not being 0.
    std::int32_t shouldQuitAfterRename = 0;
    std::int32_t shouldProcessFiles = 1;
    std::int32_t shouldProcessFolders = 1;
    std::int32_t shouldProcessSubfolders = 0;
    std::int32_t previewPaneWidth = 0; ///< in points; `firstPreviewPaneWidth` where nobody has chosen one
    std::int32_t previewMode = 0;
    std::int32_t renameMode = 2;
    std::int32_t shouldShowCurrentName = 1;
    std::int32_t shouldShowPath = 0;
    std::int32_t interactiveMode = 0;
    std::int32_t shouldShowMultistepDrawer = 0;
    std::int32_t shouldCreateSilentDroplets = 0;
    std::int32_t conflictResolutionScheme = 0;
    std::int32_t conflictResolutionOrder1 = 0;
    std::int32_t conflictResolutionOrder2 = 0;
    std::int32_t conflictResolutionOrder3 = 0;
    std::int32_t showSummary = 0;
    /// Of no effect where comments travel with their files, as `FileManager::commentsTravelWithFiles` says.
    std::int32_t shouldCopyFileComments = 1;
    std::int32_t shouldCalculateAccurateFolderSize = 1; ///< although new settings say otherwise
    std::int32_t keepHistory = 1;
    std::int32_t onConflict = 0; ///< see OnConflict

    static constexpr std::int32_t firstPreviewPaneWidth = 450;

    /// Only the value 1 counts, as in the next.
    [[nodiscard]] bool shouldInteract() const { return interactiveMode == 1; }
    [[nodiscard]] bool shouldShowSummary() const { return showSummary == 1; }
    /// Whether each run leaves a record by which it can be taken back.
    [[nodiscard]] bool shouldKeepHistory() const { return keepHistory != 0; }
    /// What becomes of items that can't have their new names for another item's sake.
    enum class OnConflict {
        number, ///< names of the list are made distinct; a name that is taken is a failure
        skip,   ///< they keep their names
        stop    ///< nothing is renamed, whatever the problem
    };
    [[nodiscard]] OnConflict conflictRule() const {
        return onConflict == 1 ? OnConflict::skip : onConflict == 2 ? OnConflict::stop : OnConflict::number;
    }
    /// The settings that decide which rows take part.
    [[nodiscard]] ItemFilter itemFilter() const {
        return {shouldProcessFiles != 0, shouldProcessFolders != 0, shouldProcessSubfolders != 0};
    }

    /// What a list of values means. A value of another kind is read as the number or truth it comes to.
    [[nodiscard]] static Settings of(const PropertyDictionary& values);
    /// The values of new settings.
    [[nodiscard]] static PropertyDictionary whenNew();
    /// Every key that means something, each with a value of its type.
    [[nodiscard]] static PropertyDictionary knownSettings();
    /// What is wrong with a number for that setting, which means nothing to it; empty for all else. Stored
    /// settings are taken as they are, whatever they hold: this is for those that somebody gives.
    [[nodiscard]] static std::string problemOf(std::string_view key, const PropertyValue& value);
};

/// The keys that code refers to besides the table of all settings.
namespace settingKey {
inline constexpr const char* accurateFolderSize = "accurateFolderSize";
inline constexpr const char* automaticSorting = "automaticSorting";
inline constexpr const char* continueAfterRename = "continueAfterRename";
inline constexpr const char* interactiveMode = "interactiveMode";
inline constexpr const char* keepHistory = "keepHistory";
inline constexpr const char* onConflict = "onConflict";
inline constexpr const char* lastAddDirectory = "lastAddDirectory";
inline constexpr const char* multistep = "multistep";
inline constexpr const char* previewMode = "previewMode";
inline constexpr const char* previewPaneWidth = "previewPaneWidth";
inline constexpr const char* processFiles = "processFiles";
inline constexpr const char* processFolders = "processFolders";
inline constexpr const char* processSubfolders = "processSubfolders";
inline constexpr const char* renameMode = "renameMode";
inline constexpr const char* silentDroplet = "silentDroplet";
} // namespace settingKey

} // namespace tavrin
