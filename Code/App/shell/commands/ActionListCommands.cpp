#include "shell/commands/ActionListCommands.h"

#include "actions/CompositeRenameAction.h"
#include "actions/SortBasedAction.h"
#include "platform/propertylists/UserDefaults.h"
#include "shell/asking/FrontEnd.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr const char* positionKey = "actionListSeparatorPosition";
constexpr std::string_view widthModeKey = "paddingMode";

const Alert noActiveActions{
    .kind = AlertKind::noActiveActions,
    .title = "There are no active renaming actions.",
    .text =
        "You appear to have un-ticked the 'Active' checkbox in the left column of all renaming actions in "
        "the multi-step interface pane.\n\nThis checkbox allows you to temporarily disable renaming "
        "steps, this is especially useful when you want to preview the effect of individual rename "
        "actions in isolation.\n\nYou do, however, need to leave at least one of the checkboxes ticked, "
        "because otherwise all file names will remain unchanged.",
    .buttons = {"OK"}};

} // namespace

void ActionListCommands::activateView() {
    BaseRenameAction& action = services.composite.getCurrentAction();
    services.frontEnd.showActionPanel(action);
    if (services.settings.values().automaticSorting)
        return;
    if (auto* sortBased = dynamic_cast<SortBasedAction*>(&action))
        sortBased->activateManualSorting();
}

bool ActionListCommands::validateActionList() {
    for (const auto& step : services.composite.getActionDictionaryList()) {
        if (step->isActive())
            return true;
    }
    services.frontEnd.showAlert(noActiveActions, [](AlertAnswer) {});
    return false;
}

void ActionListCommands::addAction() {
    const BaseRenameAction& current = services.composite.getCurrentAction();
    services.actionList.saveActionParametersToPreferences(current);
    const std::int32_t place = services.composite.getCurrentActionIndexAsInt() + 1;
    services.composite.insertActionAtIndex(services.actionList.newActionForName(current.actionName()), place);
    services.composite.setCurrentActionIndex(place);
}

void ActionListCommands::removeAction() {
    CompositeRenameAction& composite = services.composite;
    if (composite.count() == 1)
        return;
    const std::int32_t index = composite.getCurrentActionIndexAsInt();
    if (index == composite.count() - 1)
        composite.setCurrentActionIndex(index - 1);
    // Lives until the interface has moved on to another step.
    const auto removed = composite.removeActionAtIndex(index);
    composite.setCurrentActionIndex(index < 2 ? 0 : index - 1);
}

void ActionListCommands::clearActions() {
    CompositeRenameAction& composite = services.composite;
    const BaseRenameAction* kept = &composite.getCurrentAction();
    composite.setCurrentActionIndex(0);
    CompositeRenameAction::Steps removed;
    for (std::int32_t index = composite.count() - 1; index >= 0; --index) {
        if (&composite.actionAtIndex(index) != kept)
            removed.push_back(composite.removeActionAtIndex(index));
    }
    composite.setCurrentActionIndex(0);
}

void ActionListCommands::nudgeActionUp() {
    if (services.composite.getCurrentActionIndexAsInt() == 0)
        services.frontEnd.beep();
    else
        services.composite.nudgeUp();
}

void ActionListCommands::nudgeActionDown() {
    if (services.composite.getCurrentActionIndexAsInt() == services.composite.count() - 1)
        services.frontEnd.beep();
    else
        services.composite.nudgeDown();
}

void ActionListCommands::moveAction(std::int32_t from, std::int32_t to) {
    CompositeRenameAction& composite = services.composite;
    const std::int32_t last = composite.count() - 1;
    if (from < 0 || from > last || to < 0 || to > last || from == to)
        return;
    auto moved = composite.removeActionAtIndex(from);
    composite.insertActionAtIndex(std::move(moved), to);
    composite.setCurrentActionIndex(to);
}

void ActionListCommands::chooseAction(std::int32_t menuIndex) {
    services.composite.setTransientActionIndex(menuIndex);
    fitWidth();
}

void ActionListCommands::fitWidth(bool mayBeRemembered) {
    BaseRenameAction& action = services.composite.getCurrentAction();
    const auto row = std::ranges::find(action.parameters(), widthModeKey, &ParameterDescription::key);
    if (row == action.parameters().end() || row->isUnused)
        return;
    const auto stored = services.defaults.objectForKey("actions");
    const auto* actions = stored ? stored->asDictionary() : nullptr;
    const auto* entry = actions ? find(*actions, action.actionName()) : nullptr;
    const auto* remembered = entry ? entry->asDictionary() : nullptr;
    if (!mayBeRemembered || !remembered || !remembered->contains(widthModeKey))
        action.setValue(1, std::string(widthModeKey));
}

void ActionListCommands::resetToDefaults() {
    BaseRenameAction& action = services.composite.getCurrentAction();
    action.setParameterList(action.defaultParameters());
    fitWidth(false);
}

// ---- the list at the left

void ActionListCommands::restoreMultistepDrawer() {
    moveDivider(0);
    if (services.settings.values().shouldShowMultistepDrawer)
        moveDivider(storedPosition());
}

void ActionListCommands::showMultistepDrawer() {
    const bool isShown = services.settings.values().shouldShowMultistepDrawer != 0;
    moveDivider(isShown ? 0 : storedPosition());
    services.settings.setShowMultistepDrawer(isShown ? 0 : 1);
}

bool ActionListCommands::canCollapse() const { return services.composite.count() == 1; }

void ActionListCommands::splitViewDidResizeSubviews(bool isCollapsed, double width) {
    if (flagSuspendSplitViewPositionSaving)
        return;
    const bool isShown = services.settings.values().shouldShowMultistepDrawer != 0;
    if (isShown == isCollapsed)
        services.settings.setShowMultistepDrawer(isCollapsed ? 0 : 1);
    if (!isCollapsed)
        services.defaults.setObject(positionKey, std::max(width, minimumWidth));
}

void ActionListCommands::moveDivider(double position) {
    flagSuspendSplitViewPositionSaving = true;
    services.frontEnd.setDividerPosition(position);
    flagSuspendSplitViewPositionSaving = false;
}

double ActionListCommands::storedPosition() const { return services.defaults.floatForKey(positionKey); }

} // namespace tavrin
