#include "documents/DropletHandOver.h"

#include "platform/propertylists/PropertyList.h"
#include "platform/propertylists/UserDefaults.h"
#include "support/text/Text.h"

#include <fmt/format.h>

namespace tavrin {

namespace {

constexpr const char* recordKey = DropletHandOver::recordKey;

/// The bytes of a path that stands as text; absent for every other kind of value.
std::optional<std::string> pathOf(const PropertyValue& value) {
    const std::optional<std::u16string> path = textOrData(value);
    return path ? text::toBytes(*path) : std::nullopt;
}

std::optional<RecipeError> readFileList(const PropertyDictionary& record, std::vector<std::string>& into) {
    const PropertyValue* list = find(record, "file list");
    if (!list)
        return std::nullopt;
    if (!list->asArray())
        return RecipeError{fmt::format("{}.file list: expected an array", recordKey)};
    for (const PropertyValue& entry : *list->asArray()) {
        std::optional<std::string> path = pathOf(entry);
        if (!path)
            return RecipeError{fmt::format("{}.file list[{}]: expected a path", recordKey, into.size())};
        into.push_back(std::move(*path));
    }
    return std::nullopt;
}

} // namespace

bool DropletHandOver::isPresent(const UserDefaults& defaults) {
    const std::optional<PropertyValue> record = defaults.objectForKey(recordKey);
    return record && record->asDictionary() && !record->asDictionary()->empty();
}

std::variant<DropletHandOver, RecipeError> DropletHandOver::read(const UserDefaults& defaults) {
    const std::optional<PropertyValue> value = defaults.objectForKey(recordKey);
    if (!value || !value->asDictionary())
        return RecipeError{fmt::format("{}: expected a dictionary", recordKey)};
    const PropertyDictionary& record = *value->asDictionary();
    DropletHandOver handOver;
    if (const PropertyValue* chain = find(record, "composite action")) {
        RecipeFile::CheckedList checked =
            RecipeFile::checkedFlatParameterList(*chain, fmt::format("{}.composite action", recordKey));
        if (const auto* error = std::get_if<RecipeError>(&checked))
            return *error;
        handOver.compositeAction = std::move(std::get<PropertyDictionary>(checked));
    }
    if (const PropertyValue* settings = find(record, "global settings")) {
        RecipeFile::CheckedList checked =
            RecipeFile::checkedParameterList(*settings, fmt::format("{}.global settings", recordKey));
        if (const auto* error = std::get_if<RecipeError>(&checked))
            return *error;
        handOver.globalSettings = std::move(std::get<PropertyDictionary>(checked));
    }
    if (const PropertyValue* path = find(record, "settings plist path"))
        handOver.settingsPath = pathOf(*path).value_or("");
    handOver.hasVersion = find(record, "Version") != nullptr;
    if (std::optional<RecipeError> error = readFileList(record, handOver.fileList))
        return *error;
    return handOver;
}

void DropletHandOver::clear(UserDefaults& defaults) {
    defaults.removeObject(recordKey);
    // A record of this process lies over the stored one and can only be emptied.
    if (isPresent(defaults))
        defaults.setProcessObject(recordKey, PropertyDictionary());
    (void)defaults.synchronize();
}

} // namespace tavrin
