#include "RecipeLoader.h"

#include "ActionNames.h"
#include "ExitStatus.h"
#include "GivenParameters.h"
#include "SavedPresets.h"
#include "Terminal.h"
#include "actions/ActionError.h"
#include "actions/ActionList.h"
#include "documents/DropletBundle.h"
#include "documents/DropletLauncher.h"
#include "documents/TVRNGlobalPreferencesPseudoAction.h"
#include "documents/recipe/RecipeWords.h"
#include "platform/files/Descriptor.h"
#include "support/text/DisplayText.h"
#include "support/text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <fcntl.h>
#include <ranges>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

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

PropertyValue flatStep(const RecipeStep& step) {
    const std::string name(actionNames::onlyOneMeantBy(step.action).name);
    const auto action = ActionList::sharedActionList().newActionForName(name, ActionUse::privateRun);
    for (const KeyAndValue& parameter : step.parameters)
        setParameter(*action, parameter);
    return PropertyDictionary{{"action name", text::fromUtf8(name)},
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

/// To its end, however long that takes, but not without bound.
RecipeFile::Result readStream(int descriptor, RecipeFile::Accept accept) {
    constexpr std::size_t mostBytes = 64 << 20;
    std::string bytes;
    std::array<char, 65536> buffer;
    for (;;) {
        const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return RecipeError{std::generic_category().message(errno)};
        if (count == 0)
            return RecipeFile::fromBytes(bytes, accept);
        bytes.append(buffer.data(), static_cast<std::size_t>(count));
        if (bytes.size() > mostBytes)
            return RecipeError{"there is no end to it"};
    }
}

/// A file, a droplet's bundle, or the launcher of one.
RecipeFile::Result readRecipe(const std::string& path, RecipeFile::Accept accept) {
    if (path == "-")
        return readStream(STDIN_FILENO, accept);
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISCHR(status.st_mode)))
        if (const Descriptor stream(::open(path.c_str(), O_RDONLY | O_CLOEXEC)); stream)
            return readStream(stream.get(), accept);
    const DropletBundle droplet(path);
    if (droplet.isFolder())
        return droplet.readRecipe();
    if (!DropletLauncher::isLauncher(path))
        return RecipeFile::read(path, accept);
    const std::optional<DropletBundle> launched = DropletLauncher::bundleOf(path);
    if (!launched)
        return RecipeError{"the droplet of this launcher is gone"};
    return launched->readRecipe();
}

/// Throws what the result says is wrong.
Recipe taken(RecipeFile::Result result, const std::string& where) {
    auto* error = std::get_if<RecipeError>(&result);
    if (error && error->remark)
        throw RecipeTextError(where, std::move(*error->remark));
    if (error)
        throw UsageError(fmt::format("{}: {}", where, error->message));
    return std::move(std::get<Recipe>(result));
}

Recipe recipeFromFile(const std::string& path, RecipeFile::Accept accept) {
    Recipe recipe = taken(readRecipe(path, accept), path == "-" ? "standard input" : path);
    if (recipe.globalSettings)
        checkSettings(*recipe.globalSettings, path);
    return recipe;
}

Recipe recipeFromPreset(const std::string& name, RecipeFile::Accept accept) {
    const std::optional<std::string> path = SavedPresets().pathOf(name);
    if (!path)
        throw UsageError(fmt::format("there is no preset \"{}\"; \"tvrn presets\" lists them", name));
    return recipeFromFile(*path, accept);
}

[[noreturn]] void refuseSetting(const std::string& given, const PropertyDictionary& known) {
    const auto keys = known | std::views::keys;
    const std::vector<std::string_view> all(keys.begin(), keys.end());
    const std::string_view nearest = nearestWord(given, all);
    throw UsageError(fmt::format("there is no setting \"{}\"; {}", given,
                                 nearest.empty() ? fmt::format("there are: {}", fmt::join(all, ", "))
                                                 : fmt::format("did you mean \"{}\"?", nearest)));
}

} // namespace

RecipeTextError::RecipeTextError(const std::string& where, RecipeText::Remark mistake)
    : UsageError(
          fmt::format("{}, line {}, column {}: {}", where, mistake.line, mistake.column, mistake.sentence())),
      what_(std::move(mistake)) {}

std::array<std::string, 2> excerptOf(const RecipeText::Remark& remark, std::size_t columns) {
    constexpr std::size_t indentation = 2;
    const std::size_t room = std::max<std::size_t>(columns, indentation + 4) - indentation;
    const std::size_t place = remark.excerptColumn - 1;
    // The place stands in the first third of what is cut.
    const std::size_t start = place < room - room / 3 ? 0 : place - room / 3;
    std::u16string line;
    std::size_t column = 0, shownFrom = 0;
    const std::u16string whole = text::fromUtf8(remark.excerpt);
    for (const auto character : text::composedSequences(whole)) {
        const std::size_t width = display::columns(character);
        if (column >= start && column + width <= start + room) {
            shownFrom = line.empty() ? column : shownFrom;
            line += character;
        }
        column += width;
    }
    const std::size_t length = std::min(remark.length, room - std::min(place - shownFrom, room - 1));
    const std::string before(indentation + place - shownFrom, ' ');
    return {std::string(indentation, ' ') + text::toUtf8(line), before + '^' + std::string(length - 1, '~')};
}

Recipe loadRecipe(const RecipeSource& source, RecipeFile::Accept accept) {
    return std::visit(
        Overloaded{[&](const RecipeInText& recipe) {
                       return taken(RecipeFile::fromText(text::fromBytes(recipe.text), accept), "the recipe");
                   },
                   [&](const RecipeAtPath& file) { return recipeFromFile(file.path, accept); },
                   [&](const RecipeOfPreset& preset) { return recipeFromPreset(preset.name, accept); },
                   [](const std::vector<RecipeStep>& steps) { return recipeFromSteps(steps); }},
        source);
}

void tellNotes(const Recipe& recipe, Terminal& terminal) {
    for (const auto& note : recipe.notes)
        terminal.complain(
            fmt::format("tvrn: note: line {}, column {}: {}", note.line, note.column, note.sentence()));
}

void applySettings(const Recipe& recipe, const std::vector<KeyAndValue>& given,
                   TVRNGlobalPreferencesPseudoAction& settings) {
    const PropertyDictionary known = Settings::knownSettings();
    std::vector<std::pair<std::string, PropertyValue>> values;
    for (const KeyAndValue& setting : given) {
        const PropertyValue* present = find(known, setting.first);
        if (!present)
            refuseSetting(setting.first, known);
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
