#include "RecipeLoader.h"

#include "ExitStatus.h"
#include "SavedPresets.h"
#include "actions/ActionError.h"
#include "actions/ActionList.h"
#include "documents/DropletBundle.h"
#include "documents/DropletLauncher.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "support/text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <charconv>
#include <cstdint>
#include <ranges>

namespace tavrin {

namespace {

template <typename... Functions> struct Overloaded : Functions... { using Functions::operator()...; };
template <typename... Functions> Overloaded(Functions...) -> Overloaded<Functions...>;

/// What is typed for a number; nothing else may stand beside it.
std::int32_t wholeNumber(const std::string& text, const std::string& key) {
    std::int32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end)
        throw UsageError(fmt::format("{}={}: expected a whole number", key, text));
    return number;
}

/// The value in the type of the present one.
PropertyValue typedValue(const PropertyValue& present, const KeyAndValue& given) {
    const auto& [key, text] = given;
    if (present.asText())
        return text::fromBytes(text);
    const std::int32_t number = wholeNumber(text, key);
    return present.asBoolean() ? PropertyValue(number != 0) : PropertyValue(number);
}

void setParameter(BaseAction& action, const KeyAndValue& given) {
    std::vector<std::string_view> known;
    for (const ParameterDescription& parameter : action.parameters()) {
        if (parameter.key == given.first) {
            action.setValue(typedValue(propertyValue(parameter.whenNew), given), given.first);
            return;
        }
        known.push_back(parameter.key);
    }
    throw UsageError(fmt::format("the action \"{}\" has no parameter \"{}\"; it has: {}", action.actionName(),
                                 given.first, fmt::join(known, ", ")));
}

PropertyValue flatStep(const RecipeStep& step) {
    if (!ActionList::sharedActionList().hasAction(step.action)) {
        throw UsageError(fmt::format("there is no action \"{}\"; \"tvrn actions\" lists them", step.action));
    }
    const auto action = ActionList::sharedActionList().newActionForName(step.action, ActionUse::privateRun);
    for (const KeyAndValue& parameter : step.parameters)
        setParameter(*action, parameter);
    return PropertyDictionary{{"action name", text::fromUtf8(step.action)},
                              {"action parameter list", action->parameterList()}};
}

Recipe recipeFromSteps(const std::vector<RecipeStep>& steps) {
    PropertyArray flatSteps;
    for (const RecipeStep& step : steps)
        flatSteps.push_back(flatStep(step));
    return {{{"currentActionIndex", 0}, {"composite actions array", std::move(flatSteps)}}, std::nullopt};
}

/// Under their present keys or those of early versions.
void checkSettings(const PropertyDictionary& settings, const std::string& path) {
    for (const auto& [key, value] : BaseAction::cleanUpPotentiallyOldParameterList(settings)) {
        const std::string problem = Settings::problemOf(key, value);
        if (!problem.empty())
            throw UsageError(fmt::format("{}: global settings.{}: {}", path, key, problem));
    }
}

/// A file, a droplet's bundle, or the launcher of one.
RecipeFile::Result readRecipe(const std::string& path) {
    const DropletBundle droplet(path);
    if (droplet.isFolder())
        return droplet.readRecipe();
    if (!DropletLauncher::isLauncher(path))
        return RecipeFile::read(path);
    const std::optional<DropletBundle> launched = DropletLauncher::bundleOf(path);
    if (!launched)
        return RecipeError{"the droplet of this launcher is gone"};
    return launched->readRecipe();
}

Recipe recipeFromFile(const std::string& path) {
    RecipeFile::Result result = readRecipe(path);
    if (const auto* error = std::get_if<RecipeError>(&result))
        throw UsageError(fmt::format("{}: {}", path, error->message));
    auto& recipe = std::get<Recipe>(result);
    if (recipe.globalSettings)
        checkSettings(*recipe.globalSettings, path);
    return std::move(recipe);
}

Recipe recipeFromPreset(const std::string& name) {
    const std::optional<std::string> path = SavedPresets().pathOf(name);
    if (!path)
        throw UsageError(fmt::format("there is no preset \"{}\"; \"tvrn presets\" lists them", name));
    return recipeFromFile(*path);
}

} // namespace

Recipe loadRecipe(const RecipeSource& source) {
    return std::visit(Overloaded{[](const RecipeAtPath& file) { return recipeFromFile(file.path); },
                                 [](const RecipeOfPreset& preset) { return recipeFromPreset(preset.name); },
                                 [](const std::vector<RecipeStep>& steps) { return recipeFromSteps(steps); }},
                      source);
}

void applySettings(const Recipe& recipe, const std::vector<KeyAndValue>& given,
                   TVRNGlobalPreferencesPseudoAction& settings) {
    const PropertyDictionary known = Settings::knownSettings();
    std::vector<std::pair<std::string, PropertyValue>> values;
    for (const KeyAndValue& setting : given) {
        const PropertyValue* present = find(known, setting.first);
        if (!present) {
            throw UsageError(fmt::format("there is no setting \"{}\"; there are: {}", setting.first,
                                         fmt::join(known | std::views::keys, ", ")));
        }
        const auto& [key, text] = setting;
        if (!present->asText()) {
            const std::string problem = Settings::problemOf(key, wholeNumber(text, key));
            if (!problem.empty())
                throw UsageError(fmt::format("{}={}: {}", key, text, problem));
        }
        values.emplace_back(key, typedValue(*present, setting));
    }
    settings.setValue(0, settingKey::interactiveMode);
    if (recipe.globalSettings)
        settings.setParameterList(*recipe.globalSettings);
    if (settings.values().shouldCreateSilentDroplets != 0)
        settings.setValue(0, settingKey::interactiveMode); // a silent droplet asks nothing
    for (const auto& [key, value] : values)
        settings.setValue(value, key);
}

} // namespace tavrin
