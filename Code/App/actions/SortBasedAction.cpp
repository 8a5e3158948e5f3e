#include "actions/SortBasedAction.h"

#include "actions/ActionList.h"
#include "support/application/DebugLog.h"

#include <array>

namespace tavrin {

namespace {

constexpr std::array<ParameterChoice, 14> sortingModes{{
    {0, "By name (from A to Z)", "name"},
    {1, "By name (from Z to A)", "-name"},
    {2, "By modification date (from oldest to newest)", "modified"},
    {3, "By modification date (from newest to oldest)", "-modified"},
    {4, "By creation date (from oldest to newest)", "created"},
    {5, "By creation date (from newest to oldest)", "-created"},
    {6, "By size (from smallest to largest, for files only)", "size"},
    {7, "By size (from largest to smallest, for files only)", "-size"},
    {8, "By EXIF digital camera date (from oldest to newest)", "taken"},
    {9, "By EXIF digital camera date (from newest to oldest)", "-taken"},
    {10, "By name and sequence number (from A to Z)", "natural"},
    {11, "By name and sequence number (from Z to A)", "-natural"},
    {12, "At random", "random"},
    {13, "Using manual order (drag & drop items to re-arrange them)", "manual"},
}};

// A manual order leaves no ties.
constexpr std::span<const ParameterChoice> secondSortingModes(sortingModes.data(), 13);

} // namespace

std::span<const ParameterChoice> sortingModeChoices() { return sortingModes; }

SortBasedAction::SortBasedAction() {
    addParameter(choiceParameter("sortingMode", "First", sortingModes, smartNameSorting)
                     .in(PanelSection::order)
                     .under("Order")
                     .option("order"),
                 paramSortingOrder);
    addParameter(choiceParameter("sortingMode2", "Then", secondSortingModes, 0)
                     .in(PanelSection::order)
                     .offWhen("sortingMode", manualSorting)
                     .option("then"),
                 paramSortingOrder2);
    addParameter(checkboxParameter("sortEachFolderSeparately", "Start again in each folder", 0)
                     .in(PanelSection::order)
                     .mark("per-folder"),
                 paramSortEachFolderSeparately);
}

std::int32_t SortBasedAction::getSortingMode() const {
    const auto mode = getParamInt("sortingMode", 0);
    debugLog("getSortingMode: {}", mode);
    return mode;
}

std::int32_t SortBasedAction::getSortingMode2() const { return getParamInt("sortingMode2", 0); }

bool SortBasedAction::shouldUseGlobalSorting() const {
    return getParamInt("sortEachFolderSeparately", 0) != 1;
}

bool SortBasedAction::usingManualSorting() const { return getParamInt("sortingMode", 0) == manualSorting; }

void SortBasedAction::activateManualSorting() { setValue(manualSorting, "sortingMode"); }

void SortBasedAction::deactivateManualSortingIfNecessary() {
    if (usingManualSorting())
        setValue(smartNameSorting, "sortingMode");
}

void SortBasedAction::setParameterList(const PropertyDictionary& list) {
    BaseRenameAction::setParameterList(list);
    if (usingManualSorting() && ActionList::sharedActionList().automaticSorting())
        setValue(smartNameSorting, "sortingMode");
}

std::optional<PropertyValue> SortBasedAction::valueForKey(std::string_view key) const {
    return key == "usingManualSorting" ? PropertyValue(usingManualSorting())
                                       : BaseRenameAction::valueForKey(key);
}

std::vector<std::string_view>
SortBasedAction::keyPathsForValuesAffectingValueForKey(std::string_view key) const {
    if (key == "usingManualSorting")
        return {"sortingMode"};
    return BaseRenameAction::keyPathsForValuesAffectingValueForKey(key);
}

} // namespace tavrin
