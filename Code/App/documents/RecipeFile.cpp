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

RecipeFile::CheckedList checkedStep(const PropertyValue& entry, const std::string& path,
                                    RecipeFile::Accept accept) {
    const PropertyDictionary* step = entry.asDictionary();
    if (!step)
        return expected(path, "a dictionary");
    const std::string namePath = joined(path, nameKey);
    const PropertyValue* name = find(*step, nameKey);
    const std::optional<std::u16string> actionName = name ? textOrData(*name) : std::nullopt;
    if (!actionName)
        return expected(namePath, "a text");
    const std::string shownName = text::toUtf8(*actionName);
    if (accept == RecipeFile::Accept::runnable && !ActionList::sharedActionList().hasAction(shownName))
        return RecipeError{fmt::format("{}: there is no action \"{}\"", namePath, shownName)};

    PropertyDictionary parameters;
    if (const PropertyValue* list = find(*step, parametersKey)) {
        RecipeFile::CheckedList checked =
            RecipeFile::checkedParameterList(*list, joined(path, parametersKey), accept);
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

RecipeFile::Result recipeFrom(const PropertyValue& list, const std::string& path, RecipeFile::Accept accept) {
    RecipeFile::CheckedList checked = RecipeFile::checkedFlatParameterList(list, path, accept);
    if (auto* error = std::get_if<RecipeError>(&checked))
        return *error;
    Recipe recipe{std::move(std::get<PropertyDictionary>(checked)), std::nullopt};
    if (!hasSteps(recipe.flatParameterList))
        return expected(joined(path, stepsKey), "at least one step");
    return recipe;
}

RecipeFile::Result recipeFromDroplet(const PropertyValue& settings, const std::string& path,
                                     RecipeFile::Accept accept) {
    const PropertyDictionary* content = settings.asDictionary();
    if (!content)
        return expected(path, "a dictionary");
    const PropertyValue* chain = find(*content, dropletKey::chain);
    if (!chain)
        return expected(joined(path, dropletKey::chain), "a dictionary");
    RecipeFile::Result result = recipeFrom(*chain, joined(path, dropletKey::chain), accept);
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

RecipeFile::Result withDescription(RecipeFile::Result result, const PropertyDictionary& preset) {
    const PropertyValue* description = find(preset, "description");
    if (auto* recipe = std::get_if<Recipe>(&result); recipe && description)
        recipe->description = textOrData(*description).value_or(u"");
    return result;
}

/// By how it begins.
bool isPropertyList(std::string_view bytes) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(byteOrderMark))
        bytes.remove_prefix(byteOrderMark.size());
    bytes.remove_prefix(std::min(bytes.find_first_not_of(" \t\r\n"), bytes.size()));
    return bytes.starts_with("bplist") || bytes.starts_with("<?xml") || bytes.starts_with("<!DOCTYPE") ||
           bytes.starts_with("<plist");
}

} // namespace

RecipeFile::CheckedList RecipeFile::checkedParameterList(const PropertyValue& list, std::string_view keyPath,
                                                         Accept accept) {
    const PropertyDictionary* parameters = list.asDictionary();
    if (!parameters)
        return expected(keyPath, "a dictionary");
    PropertyDictionary result;
    for (const auto& [key, value] : *parameters) {
        std::optional<PropertyValue> parameter = parameterValue(value);
        if (!parameter && accept == Accept::anything)
            parameter = value;
        if (!parameter)
            return expected(joined(keyPath, key), "a text or a number");
        result.emplace(key, std::move(*parameter));
    }
    return result;
}

RecipeFile::CheckedList RecipeFile::checkedFlatParameterList(const PropertyValue& list,
                                                             std::string_view keyPath, Accept accept) {
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
        CheckedList step = checkedStep(entry, fmt::format("{}[{}]", stepsPath, checkedSteps.size()), accept);
        if (std::holds_alternative<RecipeError>(step))
            return step;
        checkedSteps.emplace_back(std::move(std::get<PropertyDictionary>(step)));
    }
    result.emplace(stepsKey, std::move(checkedSteps));
    return result;
}

RecipeFile::Result RecipeFile::fromPropertyList(const PropertyValue& root, Accept accept) {
    const PropertyDictionary* content = root.asDictionary();
    if (!content)
        return expected("", "a dictionary at the root");
    if (const PropertyValue* list = find(*content, "compositeAction"))
        return withDescription(recipeFrom(*list, "compositeAction", accept), *content);
    if (find(*content, stepsKey))
        return recipeFrom(root, "", accept);
    if (const PropertyValue* settings = find(*content, dropletKey::host))
        return recipeFromDroplet(*settings, dropletKey::host, accept);
    return RecipeError{"there is no recipe in it: expected \"compositeAction\", \"composite actions array\" "
                       "or \"Host Application Settings\" at the root"};
}

RecipeFile::Result RecipeFile::fromText(std::u16string_view text, Accept accept) {
    auto result = RecipeText::read(text);
    if (auto* remark = std::get_if<RecipeText::Remark>(&result))
        return RecipeError{remark->sentence(), std::move(*remark)};
    auto& reading = std::get<RecipeText::Reading>(result);
    if (accept == Accept::anything) // it may hold what no property list tells apart
        return Recipe{std::move(reading.flatParameterList), std::nullopt, {}, std::move(reading.notes)};
    Result recipe = recipeFrom(reading.flatParameterList, "", accept);
    if (auto* read = std::get_if<Recipe>(&recipe))
        read->notes = std::move(reading.notes);
    return recipe;
}

RecipeFile::Result RecipeFile::read(const std::string& path, Accept accept) {
    std::string bytes;
    if (const std::string problem = PropertyList::readBytes(path, bytes); !problem.empty())
        return RecipeError{problem};
    return fromBytes(bytes, accept);
}

RecipeFile::Result RecipeFile::fromBytes(std::string_view bytes, Accept accept) {
    if (!isPropertyList(bytes))
        return fromText(text::fromBytes(bytes), accept);
    const PropertyList::Result list = PropertyList::fromBytes(bytes);
    if (const auto* error = std::get_if<PropertyListError>(&list))
        return RecipeError{error->message};
    return fromPropertyList(std::get<PropertyValue>(list), accept);
}

} // namespace tavrin
