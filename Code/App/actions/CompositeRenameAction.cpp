#include "actions/CompositeRenameAction.h"

#include "actions/ActionError.h"
#include "platform/propertylists/UserDefaults.h"
#include "support/text/PathParts.h"
#include "support/text/Text.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace tavrin {

namespace {

constexpr const char* currentIndexKey = "currentActionIndex";
constexpr const char* preferencesKey = "composite action";

std::unique_ptr<BaseRenameAction> newAction(const std::string& name, ActionUse use) {
    return ActionList::sharedActionList().newActionForName(name, use);
}

} // namespace

CompositeRenameAction::CompositeRenameAction(ActionUse stepUse) : use(stepUse) {
    setActionName("Composite rename action");
    addParameter(numberParameter(currentIndexKey, "Current step", 0));
    steps.push_back(insertTextActions().front().make()); // "Add to front"
}

CompositeRenameAction::~CompositeRenameAction() = default;

// ---- the list

std::int32_t CompositeRenameAction::count() const { return static_cast<std::int32_t>(steps.size()); }

BaseRenameAction& CompositeRenameAction::actionAtIndex(std::int32_t index) const {
    if (index < 0 || index >= count())
        throw ActionError("no action at index " + std::to_string(index));
    return *steps[static_cast<std::size_t>(index)];
}

BaseRenameAction& CompositeRenameAction::getCurrentAction() const {
    return actionAtIndex(getCurrentActionIndexAsInt());
}

std::int32_t CompositeRenameAction::getCurrentActionIndexAsInt() const {
    if (steps.empty())
        throw ActionError("Action list is empty!");
    return std::clamp(getParamInt(currentIndexKey, 0), 0, count() - 1);
}

void CompositeRenameAction::setCurrentActionIndex(const std::optional<PropertyValue>& index) {
    if (!index)
        throw ActionError("setCurrentActionIndex must not be null!");
    willChangeValueForKey(currentIndexKey);
    store(std::clamp(intValue(*index), 0, count() - 1), currentIndexKey);
    didChangeValueForKey(currentIndexKey);
}

void CompositeRenameAction::insertActionAtIndex(std::unique_ptr<BaseRenameAction> action,
                                                std::int32_t index) {
    if (!action || index < 0 || index > count())
        throw ActionError("no place for an action at index " + std::to_string(index));
    willChangeValueForKey("actionList");
    steps.insert(steps.begin() + index, std::move(action));
    didChangeValueForKey("actionList");
}

std::unique_ptr<BaseRenameAction> CompositeRenameAction::removeActionAtIndex(std::int32_t index) {
    if (index < 0 || index >= count())
        throw ActionError("no action at index " + std::to_string(index));
    if (count() == 1)
        throw ActionError("Action list is empty!");
    willChangeValueForKey("actionList");
    auto removed = std::move(steps[static_cast<std::size_t>(index)]);
    steps.erase(steps.begin() + index);
    didChangeValueForKey("actionList");
    return removed;
}

CompositeRenameAction::Steps CompositeRenameAction::stepsOf(const PropertyDictionary& flatList) const {
    const auto* array = find(flatList, "composite actions array");
    return array && array->asArray() ? stepsFrom(*array->asArray()) : Steps();
}

void CompositeRenameAction::insertSteps(Steps inserted, std::int32_t index) {
    if (index < 0 || index > count())
        throw ActionError("no place for actions at index " + std::to_string(index));
    willChangeValueForKey("actionList");
    steps.insert(steps.begin() + index, std::make_move_iterator(inserted.begin()),
                 std::make_move_iterator(inserted.end()));
    didChangeValueForKey("actionList");
}

CompositeRenameAction::Steps
CompositeRenameAction::removeSteps(const std::function<bool(const BaseRenameAction&)>& wanted) {
    const auto isWanted = [&](const auto& step) { return wanted(*step); };
    if (std::ranges::all_of(steps, isWanted))
        return {};
    willChangeValueForKey("actionList");
    const auto first = std::stable_partition(steps.begin(), steps.end(), std::not_fn(isWanted));
    Steps removed(std::make_move_iterator(first), std::make_move_iterator(steps.end()));
    steps.erase(first, steps.end());
    didChangeValueForKey("actionList");
    return removed;
}

void CompositeRenameAction::nudge(std::int32_t by) {
    const auto from = getCurrentActionIndexAsInt();
    const auto to = from + by;
    if (to < 0 || to >= count())
        return;
    willChangeValueForKey("actionList");
    willChangeValueForKey("fragmentSelection");
    std::swap(steps[static_cast<std::size_t>(from)], steps[static_cast<std::size_t>(to)]);
    setCurrentActionIndex(to);
    didChangeValueForKey("fragmentSelection");
    // The change of the list is never announced as finished: its display follows the list by itself.
    willChangeValueForKey("actionList");
}

void CompositeRenameAction::nudgeUp() { nudge(-1); }
void CompositeRenameAction::nudgeDown() { nudge(1); }

bool CompositeRenameAction::canClose() const {
    return count() == 1 && steps.front()->getParamInt("active", 0) != 0;
}

// ---- the current step

std::optional<PropertyValue> CompositeRenameAction::fragmentSelection() const {
    return getCurrentAction().valueForKey("fragmentSelection");
}

void CompositeRenameAction::setFragmentSelection(const std::optional<PropertyValue>& value) {
    willChangeValueForKey("fragmentSelection");
    getCurrentAction().setValue(value, "fragmentSelection");
    didChangeValueForKey("fragmentSelection");
}

std::int32_t CompositeRenameAction::getFragmentSelectionModeAsInt() const {
    return getCurrentAction().getParamInt("fragmentSelection", 0);
}

std::optional<std::int32_t> CompositeRenameAction::transientActionIndex() const {
    return ActionList::sharedActionList().popUpMenuIndexForName(getCurrentAction().actionName());
}

void CompositeRenameAction::setTransientActionIndex(std::int32_t menuIndex) {
    auto& catalogue = ActionList::sharedActionList();
    willChangeValueForKey("transientActionIndex");
    auto& step = steps[static_cast<std::size_t>(getCurrentActionIndexAsInt())];
    catalogue.saveActionParametersToPreferences(*step);
    const auto fragment = step->valueForKey("fragmentSelection");
    const auto active = step->valueForKey("active");
    auto action = catalogue.newActionForName(catalogue.nameForPopUpIndex(menuIndex), use);

    willChangeValueForKey("actionList");
    step.swap(action);
    step->setValue(active, "active");
    step->setValue(fragment, "fragmentSelection");
    didChangeValueForKey("actionList");
    didChangeValueForKey("transientActionIndex");
}

std::optional<std::int32_t> CompositeRenameAction::categoryItem() const {
    const auto& catalogue = ActionList::sharedActionList();
    const auto index = transientActionIndex();
    const auto category = index ? catalogue.translateActionIndexToCategoryIndex(*index) : std::nullopt;
    const auto first = category ? catalogue.getFirstActionIndexForCategoryIndex(*category) : std::nullopt;
    return first ? std::optional(*index - *first) : std::nullopt;
}

void CompositeRenameAction::setCategoryItem(std::int32_t place) {
    if (const auto present = categoryItem())
        setTransientActionIndex(*transientActionIndex() - *present + place);
}

// ---- values by key

std::optional<PropertyValue> CompositeRenameAction::valueForKey(std::string_view key) const {
    const auto number = [](std::optional<std::int32_t> value) {
        return value ? std::optional<PropertyValue>(*value) : std::nullopt;
    };
    if (key == currentIndexKey)
        return getCurrentActionIndexAsInt();
    if (key == "fragmentSelection")
        return fragmentSelection();
    if (key == "transientActionIndex")
        return number(transientActionIndex());
    if (key == "categoryItem")
        return number(categoryItem());
    return BaseRenameAction::valueForKey(key);
}

void CompositeRenameAction::setValue(const std::optional<PropertyValue>& value, const std::string& key) {
    if (key == currentIndexKey)
        setCurrentActionIndex(value);
    else if (key == "fragmentSelection")
        setFragmentSelection(value);
    else if (key == "transientActionIndex" && value)
        setTransientActionIndex(intValue(*value));
    else if (key == "categoryItem" && value)
        setCategoryItem(intValue(*value));
    else
        BaseRenameAction::setValue(value, key);
}

std::vector<std::string_view>
CompositeRenameAction::keyPathsForValuesAffectingValueForKey(std::string_view key) const {
    if (key == "transientActionIndex")
        return {currentIndexKey};
    if (key == "categoryItem" || key == "fragmentSelection")
        return {"transientActionIndex", currentIndexKey};
    return BaseRenameAction::keyPathsForValuesAffectingValueForKey(key);
}

// ---- the flat parameter list

PropertyDictionary CompositeRenameAction::getFlatParameterList() const {
    PropertyArray entries;
    for (const auto& step : steps)
        entries.emplace_back(PropertyDictionary{{"action name", text::fromUtf8(step->actionName())},
                                                {"action parameter list", step->parameterList()}});
    return {{currentIndexKey, getCurrentActionIndexAsInt()}, {"composite actions array", std::move(entries)}};
}

CompositeRenameAction::Steps CompositeRenameAction::stepsFrom(const PropertyArray& entries) const {
    Steps made;
    for (const auto& entry : entries) {
        const auto* dictionary = entry.asDictionary();
        const auto* name = dictionary ? find(*dictionary, "action name") : nullptr;
        auto action = newAction(name ? text::toUtf8(textValue(*name)) : "", use);
        const auto* parameters = dictionary ? find(*dictionary, "action parameter list") : nullptr;
        if (parameters && parameters->asDictionary())
            action->setParameterList(*parameters->asDictionary());
        made.push_back(std::move(action));
    }
    return made;
}

void CompositeRenameAction::setFlatParameterList(const std::optional<PropertyDictionary>& flatList) {
    willChangeValueForKey(currentIndexKey);
    willChangeValueForKey("actionList");
    const auto* array = flatList ? find(*flatList, "composite actions array") : nullptr;
    const auto* entries = array ? array->asArray() : nullptr;
    if (!entries || entries->empty()) {
        auto fallback = newAction("Produce numbered list", use);
        steps.clear();
        steps.push_back(std::move(fallback));
        return;
    }
    auto former = stepsFrom(*entries);
    former.swap(steps); // the former steps live until everyone knows of the new ones
    if (const auto* index = find(*flatList, currentIndexKey))
        store(*index, currentIndexKey);
    didChangeValueForKey("actionList");
    didChangeValueForKey(currentIndexKey);
}

void CompositeRenameAction::saveToPreferences() const {
    UserDefaults::sharedInstance().setObject(preferencesKey, getFlatParameterList());
}

void CompositeRenameAction::loadFromPreferences() {
    const auto stored = UserDefaults::sharedInstance().objectForKey(preferencesKey);
    const auto* flatList = stored ? stored->asDictionary() : nullptr;
    setFlatParameterList(flatList ? std::optional(*flatList) : std::nullopt);
}

// ---- execution

void CompositeRenameAction::executeWithInputContext(InputContext& input, OutputContext& output) {
    const auto* current = &getCurrentAction();
    bool isAnyActive = false;
    for (const auto& step : steps) {
        if (!step->isActive())
            continue;
        isAnyActive = true;
        input.preview = step.get() == current;
        step->executeWithInputContext(input, output);
        input.preview = false;
        input.currentName = output.newName;
    }
    if (!isAnyActive)
        output.newName = input.currentName;
}

void CompositeRenameAction::addPreviewDataFor(const std::string& path, PropertyDictionary& toDictionary,
                                              InputContext& context) {
    toDictionary.insert_or_assign("oldName", context.currentName);
    toDictionary.insert_or_assign("path", text::fromBytes(PathParts(path).folder));
    OutputContext output;
    executeWithInputContext(context, output);
    for (std::size_t i = 0; output.regex && i < output.regex->size(); ++i)
        toDictionary.insert_or_assign("regex" + std::to_string(i + 1), (*output.regex)[i]);
    toDictionary.insert_or_assign("newName", output.newName);
}

} // namespace tavrin
