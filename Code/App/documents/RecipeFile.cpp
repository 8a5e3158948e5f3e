#include "documents/RecipeFile.h"

#include "actions/ActionList.h"
#include "platform/propertylists/PropertyList.h"
#include "support/text/Text.h"

#include <fmt/format.h>

namespace tavrin {

namespace {

constexpr std::string_view stepsKey = "composite actions array";
constexpr std::string_view nameKey = "action name";
constexpr std::string_view parametersKey = "action parameter list";
constexpr std::string_view indexKey = "currentActionIndex";

std::string joined(std::string_view path, std::string_view key) {
    return path.empty() ? std::string(key) : fmt::format("{}.{}", path, key);
}

RecipeError expected(std::string_view path, std::string_view what) {
    return {path.empty() ? fmt::format("expected {}", what) : fmt::format("{}: expected {}", path, what)};
}

/// A parameter in the form that actions hold; absent for any other kind of value.
std::optional<PropertyValue> parameterValue(const PropertyValue& value) {
    if (value.isNumber())
        return value;
    if (std::optional<std::u16string> text = textOrData(value))
        return PropertyValue(std::move(*text));
    return std::nullopt;
}

RecipeFile::CheckedList checkedStep(const PropertyValue& entry, const std::string& path) {
    const PropertyDictionary* step = entry.asDictionary();
    if (!step)
        return expected(path, "a dictionary");
    const std::string namePath = joined(path, nameKey);
    const PropertyValue* name = find(*step, nameKey);
    const std::optional<std::u16string> actionName = name ? textOrData(*name) : std::nullopt;
    if (!actionName)
        return expected(namePath, "a text");
    const std::string shownName = text::toUtf8(*actionName);
    if (!ActionList::sharedActionList().hasAction(shownName))
        return RecipeError{fmt::format("{}: there is no action \"{}\"", namePath, shownName)};

    PropertyDictionary parameters;
    if (const PropertyValue* list = find(*step, parametersKey)) {
        RecipeFile::CheckedList checked =
            RecipeFile::checkedParameterList(*list, joined(path, parametersKey));
        if (std::holds_alternative<RecipeError>(checked))
            return checked;
        parameters = std::move(std::get<PropertyDictionary>(checked));
    }
    return PropertyDictionary{{std::string(nameKey), *actionName},
                              {std::string(parametersKey), std::move(parameters)}};
}

bool hasSteps(const PropertyDictionary& flatList) {
    const PropertyValue* steps = find(flatList, stepsKey);
    return steps && !steps->asArray()->empty();
}

RecipeFile::Result recipeFrom(const PropertyValue& list, const std::string& path) {
    RecipeFile::CheckedList checked = RecipeFile::checkedFlatParameterList(list, path);
    if (auto* error = std::get_if<RecipeError>(&checked))
        return *error;
    Recipe recipe{std::move(std::get<PropertyDictionary>(checked)), std::nullopt};
    if (!hasSteps(recipe.flatParameterList))
        return expected(joined(path, stepsKey), "at least one step");
    return recipe;
}

RecipeFile::Result recipeFromDroplet(const PropertyValue& settings, const std::string& path) {
    const PropertyDictionary* content = settings.asDictionary();
    if (!content)
        return expected(path, "a dictionary");
    const PropertyValue* chain = find(*content, dropletKey::chain);
    if (!chain)
        return expected(joined(path, dropletKey::chain), "a dictionary");
    RecipeFile::Result result = recipeFrom(*chain, joined(path, dropletKey::chain));
    const PropertyValue* global = find(*content, dropletKey::globalSettings);
    if (!global || !std::holds_alternative<Recipe>(result))
        return result;
    RecipeFile::CheckedList checked =
        RecipeFile::checkedParameterList(*global, joined(path, dropletKey::globalSettings));
    if (auto* error = std::get_if<RecipeError>(&checked))
        return *error;
    std::get<Recipe>(result).globalSettings = std::move(std::get<PropertyDictionary>(checked));
    return result;
}

} // namespace

RecipeFile::CheckedList RecipeFile::checkedParameterList(const PropertyValue& list,
                                                         std::string_view keyPath) {
    const PropertyDictionary* parameters = list.asDictionary();
    if (!parameters)
        return expected(keyPath, "a dictionary");
    PropertyDictionary result;
    for (const auto& [key, value] : *parameters) {
        std::optional<PropertyValue> parameter = parameterValue(value);
        if (!parameter)
            return expected(joined(keyPath, key), "a text or a number");
        result.emplace(key, std::move(*parameter));
    }
    return result;
}

RecipeFile::CheckedList RecipeFile::checkedFlatParameterList(const PropertyValue& list,
                                                             std::string_view keyPath) {
    const PropertyDictionary* content = list.asDictionary();
    if (!content)
        return expected(keyPath, "a dictionary");
    PropertyDictionary result;
    if (const PropertyValue* index = find(*content, indexKey)) {
        if (!index->isNumber())
            return expected(joined(keyPath, indexKey), "a number");
        result.emplace(indexKey, *index);
    }
    const PropertyValue* steps = find(*content, stepsKey);
    if (!steps)
        return result;
    const std::string stepsPath = joined(keyPath, stepsKey);
    if (!steps->asArray())
        return expected(stepsPath, "an array");
    PropertyArray checkedSteps;
    for (const PropertyValue& entry : *steps->asArray()) {
        CheckedList step = checkedStep(entry, fmt::format("{}[{}]", stepsPath, checkedSteps.size()));
        if (std::holds_alternative<RecipeError>(step))
            return step;
        checkedSteps.emplace_back(std::move(std::get<PropertyDictionary>(step)));
    }
    result.emplace(stepsKey, std::move(checkedSteps));
    return result;
}

RecipeFile::Result RecipeFile::fromPropertyList(const PropertyValue& root) {
    const PropertyDictionary* content = root.asDictionary();
    if (!content)
        return expected("", "a dictionary at the root");
    if (const PropertyValue* list = find(*content, "compositeAction"))
        return recipeFrom(*list, "compositeAction");
    if (find(*content, stepsKey))
        return recipeFrom(root, "");
    if (const PropertyValue* settings = find(*content, dropletKey::host))
        return recipeFromDroplet(*settings, dropletKey::host);
    return RecipeError{"there is no recipe in it: expected \"compositeAction\", \"composite actions array\" "
                       "or \"Host Application Settings\" at the root"};
}

RecipeFile::Result RecipeFile::read(const std::string& path) {
    const PropertyList::Result list = PropertyList::read(path);
    if (const auto* error = std::get_if<PropertyListError>(&list))
        return RecipeError{error->message};
    return fromPropertyList(std::get<PropertyValue>(list));
}

} // namespace tavrin
