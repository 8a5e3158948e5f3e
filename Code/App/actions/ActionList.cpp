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

ActionList::ActionList(std::vector<ActionEntry> allEntries) : entries(std::move(allEntries)) {
    std::ranges::stable_sort(entries, {}, &ActionEntry::category);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i == 0 || entries[i].category != entries[i - 1].category)
            openCategory(entries[i].category);
        addToMenus(entries[i]);
    }
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

void ActionList::openCategory(ActionCategory category) {
    if (!categories.empty()) { // a separator, of the category in front of it
        names.emplace_back();
        labels.emplace_back();
        actionToCategory.push_back(actionToCategory.back());
    }
    categories.push_back(text::fromUtf8(categoryLabel(category)));
    categoryToAction.emplace_back();
    categoryToActionNames.emplace_back();
}

void ActionList::addToMenus(const ActionEntry& entry) {
    entriesByName.emplace(entry.name, &entry);
    categoryToAction.back().push_back(count());
    categoryToActionNames.back().push_back(text::fromUtf8(entry.label));
    actionToCategory.push_back(static_cast<std::int32_t>(categories.size()) - 1);
    names.emplace_back(entry.name);
    labels.push_back(categoryToActionNames.back().back());
}

const ActionEntry* ActionList::entryForName(std::string_view name) const {
    const auto place = entriesByName.find(name);
    return place == entriesByName.end() ? nullptr : place->second;
}

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
    const auto* entry = entryForName(name);
    if (!entry) {
        std::string known;
        for (const auto& [each, itsEntry] : entriesByName)
            known += std::string(known.empty() ? "\"" : ", \"").append(each) + '"';
        throw UnknownActionError("!!!!Couldn't load new action '" + name +
                                 "' from nib with nameToNibMapping: " + known);
    }
    auto action = entry->make();
    loadActionParametersFromPreferences(*action);
    // Actions of a run are made by its thread when the main loop has ended: that must not look at the
    // observer.
    if (use == ActionUse::edited && observer)
        action->registerObserverForAllValues(*observer, observerLifetime);
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
