#include "documents/Settings.h"

#include "actions/SortBasedAction.h"
#include "platform/desktop/UserFolders.h"
#include "support/application/MacOSXVersion.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <limits>
#include <variant>
#include <vector>

namespace tavrin {

namespace {

constexpr std::int32_t anyNumber = std::numeric_limits<std::int32_t>::max();

/// A setting with its value in new settings and the numbers that mean something.
struct Row {
    using Field = std::variant<std::monostate, bool Settings::*, std::int32_t Settings::*>;

    const char* key;
    Field field; ///< none for what is read by its key
    PropertyValue whenNew;
    std::int32_t highest = 1; ///< 0 is the lowest; of no meaning for a text
    bool isInNewSettings = true;
};

const std::vector<Row>& table() {
    using S = Settings;
    using namespace settingKey;
    static const auto lastSortingMode = static_cast<std::int32_t>(sortingModeChoices().size()) - 1;
    static const std::vector<Row> rows{
        {"retrieveEXIFInformation", &S::shouldRetrieveEXIFInformation, true},
        {"quickLookThumbnail", &S::shouldShowQuickLookThumbnail, true},
        {"preventAccidentalITunesLibraryDamage", &S::shouldPreventAccidentalITunesLibraryDamage, true},
        {"preventAccidentalIPhotoLibraryDamage", &S::shouldPreventAccidentalIPhotoLibraryDamage, true},
        {"previewConflictResolution", &S::shouldPreviewConflictResolution, true},
        {automaticSorting, &S::automaticSorting, true},
        {lastAddDirectory, {}, u""}, // the user's home when new
        {"quitAfterRename", &S::shouldQuitAfterRename, 0},
        {processFiles, &S::shouldProcessFiles, 1},
        {processFolders, &S::shouldProcessFolders, 1},
        {processSubfolders, &S::shouldProcessSubfolders, 0},
        {previewPaneWidth, &S::previewPaneWidth, S::firstPreviewPaneWidth, anyNumber},
        {previewMode, &S::previewMode, 0, anyNumber},
        {"discloseAdvancedOptions", {}, 0},
        {renameMode, &S::renameMode, MacOSXVersion::isLionOrLater() ? 0 : 1, 2},
        {"showCurrentName", &S::shouldShowCurrentName, 1},
        {"showPath", &S::shouldShowPath, 0},
        {interactiveMode, &S::interactiveMode, 1},
        {multistep, &S::shouldShowMultistepDrawer, 0},
        {silentDroplet, &S::shouldCreateSilentDroplets, 0},
        {"lockedDroplet", &S::shouldPreventDropletEditing, false},
        {"conflictResolutionScheme", &S::conflictResolutionScheme, 9, 13},
        {"conflictResolutionDontChangeFirst", &S::conflictResolutionDontChangeFirst, false, 1, false},
        {"conflictResolutionOrder1", &S::conflictResolutionOrder1, 8, lastSortingMode},
        {"conflictResolutionOrder2", &S::conflictResolutionOrder2, 2, lastSortingMode},
        {"conflictResolutionOrder3", &S::conflictResolutionOrder3, 10, lastSortingMode},
        {"showSummary", &S::showSummary, 1},
        {"copyFileComments", &S::shouldCopyFileComments, 1},
        {accurateFolderSize, &S::shouldCalculateAccurateFolderSize, 0},
        {continueAfterRename, &S::shouldContinueAfterRename, true},
        {keepHistory, &S::keepHistory, 1},
        {onConflict, &S::onConflict, 0, 2},
    };
    return rows;
}

} // namespace

Settings Settings::of(const PropertyDictionary& values) {
    Settings settings;
    for (const Row& row : table()) {
        const PropertyValue* value = find(values, row.key);
        if (!value)
            continue;
        if (const auto* truth = std::get_if<bool Settings::*>(&row.field))
            settings.*(*truth) = boolValue(*value);
        else if (const auto* number = std::get_if<std::int32_t Settings::*>(&row.field))
            settings.*(*number) = intValue(*value);
    }
    return settings;
}

PropertyDictionary Settings::whenNew() {
    PropertyDictionary values;
    for (const Row& row : table())
        if (row.isInNewSettings)
            values.emplace(row.key, row.whenNew);
    values.insert_or_assign(settingKey::lastAddDirectory, text::fromBytes(UserFolders::home()));
    return values;
}

PropertyDictionary Settings::knownSettings() {
    PropertyDictionary values;
    for (const Row& row : table())
        values.emplace(row.key, row.whenNew);
    return values;
}

std::string Settings::problemOf(std::string_view key, const PropertyValue& value) {
    for (const Row& row : table()) {
        const std::int32_t number = intValue(value);
        if (row.key == key && !row.whenNew.asText() && (number < 0 || number > row.highest))
            return row.highest == anyNumber ? "expected no number below 0"
                                            : fmt::format("expected a number from 0 to {}", row.highest);
    }
    return {};
}

} // namespace tavrin
