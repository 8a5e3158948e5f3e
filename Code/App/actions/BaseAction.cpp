#include "actions/BaseAction.h"

#include "actions/ActionList.h"
#include "platform/propertylists/PropertyList.h"
#include "support/application/DebugLog.h"
#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

BaseAction::BaseAction() {
    addParameter(checkboxParameter("active", "Active", 1).hidden().as(RecipeForm::off, "off"));
}

BaseAction::~BaseAction() = default;

std::span<const ParameterDescription> BaseAction::parameters() const { return rows; }

PropertyDictionary BaseAction::defaultParameters() const {
    PropertyDictionary defaults;
    for (const auto& row : parameters())
        defaults.insert_or_assign(std::string(row.key), propertyValue(row.whenNew));
    return defaults;
}

// ---- the parameter table

void BaseAction::addRow(const ParameterDescription& row, Field field) {
    auto place =
        std::find_if(rows.begin(), rows.end(), [&](const auto& each) { return each.key == row.key; });
    if (place == rows.end()) {
        rows.push_back(row);
        fields.push_back(field);
    } else {
        fields[static_cast<std::size_t>(place - rows.begin())] = field;
        *place = row;
    }
    store(propertyValue(row.whenNew), row.key);
}

void BaseAction::addParameter(const ParameterDescription& row) { addRow(row, {}); }
void BaseAction::addParameter(const ParameterDescription& row, std::int32_t& field) { addRow(row, &field); }
void BaseAction::addParameter(const ParameterDescription& row, std::u16string& field) { addRow(row, &field); }

void BaseAction::setDefault(std::string_view key, ParameterDefault whenNew) {
    for (auto& row : rows)
        if (row.key == key)
            row.whenNew = whenNew;
    store(propertyValue(whenNew), key);
}

void BaseAction::hideParameter(std::string_view key) {
    for (auto& row : rows)
        if (row.key == key)
            row = row.hidden().as(RecipeForm::stored);
}

void BaseAction::retireParameter(std::string_view key) {
    for (auto& row : rows)
        if (row.key == key)
            row = row.unused().as(RecipeForm::stored);
}

void BaseAction::refreshCaches() {
    // Taken before: a preparation that corrects a value asks for one more.
    preparedRevision = currentRevision;
    prepareParameters();
}

void BaseAction::prepareParameters() {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (auto* number = std::get_if<std::int32_t*>(&fields[i]))
            **number = getParamInt(rows[i].key, 0);
        else if (auto* text = std::get_if<std::u16string*>(&fields[i]))
            **text = getParamString(rows[i].key);
    }
}

// ---- values

std::u16string BaseAction::getParamString(std::string_view key) const {
    const auto* value = find(dic, key);
    return value ? textOrData(*value).value_or(textValue(*value)) : std::u16string();
}

std::int32_t BaseAction::getParamInt(std::string_view key, std::int32_t defaultTo) const {
    const auto* value = find(dic, key);
    return value ? intValue(*value) : defaultTo;
}

std::optional<PropertyValue> BaseAction::valueForKey(std::string_view key) const {
    const auto* value = find(dic, key);
    return value ? std::optional(*value) : std::nullopt;
}

void BaseAction::store(PropertyValue value, std::string_view key) {
    dic.insert_or_assign(std::string(key), std::move(value));
    ++currentRevision;
}

void BaseAction::setValue(const std::optional<PropertyValue>& value, const std::string& key) {
    willChangeValueForKey(key);
    willChangeValueForKey("userDescription");
    setUndefinedValue(value, key);
    valuesHaveChanged();
    didChangeValueForKey("userDescription");
    didChangeValueForKey(key);
}

void BaseAction::setUndefinedValue(const std::optional<PropertyValue>& value, const std::string& key) {
    const auto* present = find(dic, key);
    if (value)
        store(*value, key);
    else if (present && present->asText())
        store(u"", key);
    else if (present && present->isNumber())
        store(0, key);
    else if (present)
        debugLog("unrecognized null value put into BaseAction");
}

PropertyValue BaseAction::validatedValue(const PropertyValue& value, std::string_view) const { return value; }

PropertyDictionary BaseAction::presentForm(const PropertyDictionary& list) const {
    return cleanUpPotentiallyOldParameterList(list);
}

void BaseAction::setParameterList(const PropertyDictionary& list) {
    const auto cleaned = presentForm(list);
    for (const auto& [key, value] : dic)
        willChangeValueForKey(key);
    for (const auto& [key, value] : cleaned)
        store(value, key);
    valuesHaveChanged();
    for (const auto& [key, value] : PropertyDictionary(dic))
        didChangeValueForKey(key);
}

std::u16string BaseAction::limitTextFieldInputTo1Character(const std::string& key) {
    auto text = getParamString(key);
    const auto first = text::firstComposedSequence(text);
    if (first.size() < text.size()) {
        text = std::u16string(first);
        setValue(text, key);
    }
    return text;
}

// ---- early key forms

std::string BaseAction::internalKeyToExternalKey(std::string_view key) {
    std::string external;
    bool isMarked = false;
    for (const char c : key) {
        if (c == ' ') {
            isMarked = true;
        } else {
            const auto upper = isMarked && c >= 'a' && c <= 'z';
            external += upper ? static_cast<char>(c - 'a' + 'A') : c;
            isMarked = false;
        }
    }
    return external;
}

std::string BaseAction::externalKeyToInternalKey(std::string_view key) {
    if (key.find(' ') != std::string_view::npos)
        return std::string(key);
    std::string internal;
    for (const char16_t unit : text::fromUtf8(key)) {
        const std::u16string one(1, unit);
        if (text::uppercased(one) == one)
            internal += ' ' + text::toUtf8(text::lowercased(one));
        else
            internal += text::toUtf8(one);
    }
    return internal;
}

PropertyDictionary BaseAction::cleanUpPotentiallyOldParameterList(const PropertyDictionary& list) {
    PropertyDictionary cleaned = list;
    for (const auto& [key, value] : list)
        if (auto present = internalKeyToExternalKey(key); !list.contains(present))
            cleaned.insert_or_assign(std::move(present), value);
    return cleaned;
}

std::u16string BaseAction::userDescription() const {
    return ActionList::sharedActionList().popUpMenuItemStringForName(actionName());
}

std::string BaseAction::description() const {
    return "Action: " + actionName() + " param: " + tavrin::description(PropertyValue(dic));
}

} // namespace tavrin
