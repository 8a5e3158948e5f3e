#include "actions/ActionList.h"

#include "actions/ActionError.h"
#include "platform/processes/RunLoop.h"
#include "platform/propertylists/UserDefaults.h"
#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

ActionList* sharedList = nullptr;

template <typename Items> const typename Items::value_type* at(const Items& items, std::int32_t index) {
    const auto place = static_cast<std::size_t>(index);
    return index >= 0 && place < items.size() ? &items[place] : nullptr;
}

} // namespace

ActionList::ActionList(Resources resources, std::vector<ActionEntry> entries) {
    for (const auto& entry : entries)
        factories.emplace(entry.name, entry.make);
    keepKnownActions(std::move(resources));
    prepareMappings();
}

ActionList::~ActionList() {
    if (sharedList == this)
        sharedList = nullptr;
}

ActionList& ActionList::sharedActionList() {
    if (!sharedList)
        throw ActionError("no action list is registered");
    return *sharedList;
}

void ActionList::setSharedActionList(ActionList* list) { sharedList = list; }

void ActionList::setObserver(ActionObserver* newObserver) {
    observer = newObserver;
    observerLifetime = std::make_shared<char>();
}

// ---- menus

void ActionList::prepareMappings() {
    std::vector<std::int32_t> indexes;
    std::vector<std::u16string> categoryLabels;
    const auto closeCategory = [&] {
        categoryToAction.push_back(std::move(indexes));
        categoryToActionNames.push_back(std::move(categoryLabels));
        indexes.clear();
        categoryLabels.clear();
    };
    for (std::int32_t index = 0; index < count(); ++index) {
        const auto& name = *at(names, index);
        actionToCategory.push_back(static_cast<std::int32_t>(categoryToAction.size()));
        if (name.empty()) {
            closeCategory();
        } else {
            indexes.push_back(index);
            categoryLabels.push_back(popUpMenuItemStringForName(name));
        }
    }
    if (!names.empty())
        closeCategory();
}

bool ActionList::hasAction(std::string_view name) const { return factories.contains(name); }

std::u16string ActionList::popUpMenuItemStringForName(std::string_view name) const {
    const auto index = popUpMenuIndexForName(name);
    const auto* label = index ? at(labels, *index) : nullptr;
    return label ? *label : u"Error";
}

std::optional<std::int32_t> ActionList::popUpMenuIndexForName(std::string_view name) const {
    const auto place = std::find(names.begin(), names.end(), name);
    if (place == names.end())
        return std::nullopt;
    return static_cast<std::int32_t>(place - names.begin());
}

std::string ActionList::nameForPopUpIndex(std::int32_t index) const {
    const auto* name = at(names, index);
    return name ? *name : std::string();
}

std::optional<std::int32_t> ActionList::translateActionIndexToCategoryIndex(std::int32_t index) const {
    const auto* category = at(actionToCategory, index);
    return category ? std::optional(*category) : std::nullopt;
}

std::optional<std::int32_t> ActionList::getFirstActionIndexForCategoryIndex(std::int32_t category) const {
    const auto* indexes = at(categoryToAction, category);
    return indexes && !indexes->empty() ? std::optional(indexes->front()) : std::nullopt;
}

std::vector<std::u16string> ActionList::getItemNamesForCategory(std::int32_t category) const {
    const auto* itemNames = at(categoryToActionNames, category);
    return itemNames ? *itemNames : std::vector<std::u16string>();
}

// ---- making actions

std::unique_ptr<BaseRenameAction> ActionList::newActionForName(const std::string& name, ActionUse use) {
    // The main thread takes no lock: a worker that holds it may be waiting for the main thread.
    if (runLoop && runLoop->isCurrent())
        return internalNewActionForName(name, use);
    const std::lock_guard lock(making);
    if (!hasAction(name) || !runLoop)
        return internalNewActionForName(name, use);
    std::unique_ptr<BaseRenameAction> action;
    if (!runLoop->performAndWait([&] { action = internalNewActionForName(name, use); }))
        return internalNewActionForName(name, use); // the main loop has ended, nobody else makes actions
    return action;
}

std::unique_ptr<BaseRenameAction> ActionList::internalNewActionForName(const std::string& name,
                                                                       ActionUse use) const {
    const auto place = factories.find(name);
    if (place == factories.end()) {
        std::string known;
        for (const auto& [each, factory] : factories)
            known += (known.empty() ? "\"" : ", \"") + each + '"';
        throw UnknownActionError("!!!!Couldn't load new action '" + name +
                                 "' from nib with nameToNibMapping: " + known);
    }
    auto action = place->second();
    loadActionParametersFromPreferences(*action);
    // Actions of a run are made by its thread when the main loop has ended: that must not look at the
    // observer.
    if (use == ActionUse::edited && observer)
        action->registerObserverForAllValues(*observer, observerLifetime);
    if (const auto found = action->actionName(); found != name)
        throw ActionError("action in nib file different from promised action name. Found " + found +
                          ". Were promised: " + name);
    return action;
}

void ActionList::saveActionParametersToPreferences(const BaseAction& action) const {
    auto& defaults = UserDefaults::sharedInstance();
    const auto stored = defaults.objectForKey("actions");
    const auto* present = stored ? stored->asDictionary() : nullptr;
    auto actions = present ? *present : PropertyDictionary();
    actions.insert_or_assign(action.actionName(), action.parameterList());
    defaults.setObject("actions", std::move(actions));
    defaults.synchronize();
}

void ActionList::loadActionParametersFromPreferences(BaseAction& action) const {
    const auto stored = UserDefaults::sharedInstance().objectForKey("actions");
    const auto* actions = stored ? stored->asDictionary() : nullptr;
    const auto* entry = actions ? find(*actions, action.actionName()) : nullptr;
    if (const auto* parameters = entry ? entry->asDictionary() : nullptr)
        action.setParameterList(*parameters);
}

} // namespace tavrin
