#include "ActionDescriptions.h"

#include "ActionNames.h"
#include "GivenParameters.h"
#include "documents/recipe/RecipeText.h"
#include "documents/recipe/RecipeUsage.h"
#include "documents/recipe/RecipeWords.h"
#include "support/text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

#include <limits>

namespace tavrin::actionDescriptions {

namespace {

using Json = nlohmann::ordered_json;

std::vector<const ParameterDescription*> offeredRows(const BaseRenameAction& action) {
    std::vector<const ParameterDescription*> rows;
    for (const ParameterDescription& row : action.parameters())
        if (isOffered(action, row))
            rows.push_back(&row);
    return rows;
}

// --- For programs

Json jsonValue(const PropertyValue& value) {
    if (const std::int64_t* number = value.asInteger())
        return *number;
    return text::toUtf8(textValue(value));
}

std::string_view controlName(ParameterKind kind) {
    switch (kind) {
    case ParameterKind::text:
        return "text";
    case ParameterKind::character:
        return "character";
    case ParameterKind::number:
        return "number";
    case ParameterKind::checkbox:
        return "checkbox";
    case ParameterKind::choice:
        return "choice";
    case ParameterKind::pattern:
        return "pattern";
    case ParameterKind::file:
        return "file";
    case ParameterKind::status:
        return "status";
    }
    return {};
}

std::string_view formName(RecipeForm form) {
    switch (form) {
    case RecipeForm::stored:
        return "stored";
    case RecipeForm::first:
        return "first";
    case RecipeForm::date:
        return "date";
    case RecipeForm::alone:
    case RecipeForm::part:
    case RecipeForm::mark:
    case RecipeForm::off:
        return "alone";
    case RecipeForm::phrase:
        return "phrase";
    case RecipeForm::option:
        return "option";
    }
    return {};
}

void addWords(const ParameterDescription& row, Json& json) {
    json["form"] = formName(row.form);
    if (!row.word.empty())
        json["word"] = row.word;
    if (!row.scope.empty())
        json["behind"] = row.scope;
}

Json jsonParameter(const ParameterDescription& row) {
    const Json whenNew = jsonValue(propertyValue(row.whenNew));
    Json json{{"key", row.key},
              {"label", row.label},
              {"type", row.isText() ? "text" : "number"},
              {"control", controlName(row.kind)},
              {"default", whenNew},
              {"defaultWhenAbsent", whenNew}};
    addWords(row, json);
    for (const ParameterChoice& choice : row.choices) {
        json["choices"].push_back({{"value", choice.value}, {"label", choice.label}});
        if (const std::string_view word = wordOf(row, choice); !word.empty())
            json["choices"].back()["word"] = word;
    }
    if (row.kind == ParameterKind::number) {
        json["minimum"] = row.minimum;
        json["maximum"] = row.maximum;
    }
    if (row.shownOffset != 0)
        json["shownOffset"] = row.shownOffset;
    if (!row.shownWhenKey.empty())
        json["shownWhen"] = {{"key", row.shownWhenKey}, {"value", row.shownWhenValue}};
    if (!row.offWhenKey.empty())
        json["offWhen"] = {{"key", row.offWhenKey}, {"value", row.offWhenValue}};
    return json;
}

Json jsonExample(const ActionEntry& entry, const ActionExample& example) {
    Json parameters = Json::object();
    for (const auto& [key, value] : example.parameters)
        parameters[key] = jsonValue(value);
    Json json{{"parameters", parameters},
              {"recipe", recipeOf(entry, example)},
              {"before", text::toUtf8(example.before)},
              {"after", text::toUtf8(example.after)}};
    const std::vector<std::string> circumstances = circumstancesOf(example);
    if (!circumstances.empty())
        json["circumstances"] = circumstances;
    return json;
}

// --- For people

/// A line of two columns, of which the second may have nothing to show.
std::string line(const std::string& first, std::string_view second) {
    return second.find_first_not_of(' ') == second.npos ? first + '\n'
                                                        : fmt::format("{:<57}  {}\n", first, second);
}

/// How a recipe tells the parameter, where that is not by the words of its choices.
std::string inRecipes(const ParameterDescription& row) {
    const char* const value = !row.sideKey.empty()   ? "before|after TEXT"
                              : row.isText()         ? "TEXT"
                              : !row.signKey.empty() ? "[-]NUMBER"
                                                     : "NUMBER";
    switch (row.form) {
    case RecipeForm::first:
        return row.mayBeLeftOut ? fmt::format("[{}]", value) : value;
    case RecipeForm::phrase:
        return fmt::format("{} {}", row.word, value);
    case RecipeForm::option:
        return fmt::format("{}={}", row.word, row.choices.empty() ? value : "...");
    case RecipeForm::date:
        return "PATTERN";
    case RecipeForm::stored:
    case RecipeForm::alone:
    case RecipeForm::part:
    case RecipeForm::mark:
    case RecipeForm::off:
        break;
    }
    return {};
}

std::string shownDefault(const ParameterDescription& row) {
    const std::string value = text::toUtf8(textValue(propertyValue(row.whenNew)));
    return row.isText() ? fmt::format("\"{}\"", value) : value;
}

std::string shownParameter(const ParameterDescription& row) {
    constexpr const char* nothing = "";
    std::string text =
        line(fmt::format("  {:<20} {} ({})", row.key, row.label, shownDefault(row)), inRecipes(row));
    const auto remark = [&](const std::string& what) {
        text += fmt::format("  {:<20}   {}\n", nothing, what);
    };
    for (const ParameterChoice& choice : row.choices)
        text += line(fmt::format("  {:<20}   {:>2}: {}", nothing, choice.value, choice.label),
                     wordOf(row, choice));
    if (row.kind == ParameterKind::number && row.minimum != std::numeric_limits<std::int32_t>::min())
        remark(fmt::format("from {} to {}", row.minimum, row.maximum));
    if (row.shownOffset != 0)
        remark(fmt::format("0 stands for {}, which recipes write", row.shownOffset));
    if (!row.shownWhenKey.empty())
        remark(fmt::format("counts while {} is {}", row.shownWhenKey, row.shownWhenValue));
    if (!row.offWhenKey.empty())
        remark(fmt::format("counts unless {} is {}", row.offWhenKey, row.offWhenValue));
    return text;
}

std::string shownExample(const ActionEntry& entry, const ActionExample& example) {
    const std::vector<std::string> circumstances = circumstancesOf(example);
    const std::string about =
        circumstances.empty() ? "" : fmt::format("    ({})", fmt::join(circumstances, ", "));
    return fmt::format("  {}\n    {}{}\n    {}\n", recipeOf(entry, example), text::toUtf8(example.before),
                       about, text::toUtf8(example.after));
}

} // namespace

std::string text(const ActionEntry& entry) {
    const auto action = entry.make();
    std::string text =
        fmt::format("{}\n{}: {}\nIn recipes: {}\n\nParameters, with their defaults:\n", entry.name,
                    categoryLabel(entry.category), entry.label, recipeUsageLine(RecipeAction(entry)));
    for (const ParameterDescription* row : offeredRows(*action))
        text += shownParameter(*row);
    if (!entry.examples.empty())
        text += "\nExamples:\n";
    for (const ActionExample& example : entry.examples)
        text += shownExample(entry, example);
    return text;
}

std::string json(const ActionEntry& entry) {
    Json json{{"name", entry.name},
              {"label", entry.label},
              {"category", categoryLabel(entry.category)},
              {"verb", entry.recipe.verb}};
    if (const std::string_view place = wordOf(entry.recipe.place); !place.empty())
        json["place"] = place;
    json["parameters"] = Json::array();
    json["examples"] = Json::array();
    const auto action = entry.make();
    for (const ParameterDescription* row : offeredRows(*action))
        json["parameters"].push_back(jsonParameter(*row));
    for (const ActionExample& example : entry.examples)
        json["examples"].push_back(jsonExample(entry, example));
    return json.dump() + '\n';
}

std::string recipeOf(const ActionEntry& entry, const ActionExample& example) {
    PropertyDictionary parameters = entry.make()->defaultParameters();
    for (const auto& [key, value] : example.parameters)
        parameters.insert_or_assign(key, value);
    if (!example.file.list.empty())
        parameters.insert_or_assign("listFilePath", u"names.txt");
    const PropertyDictionary step{{"action name", text::fromUtf8(entry.name)},
                                  {"action parameter list", std::move(parameters)}};
    return text::toUtf8(RecipeText::write({{"composite actions array", PropertyArray{step}}}));
}

std::vector<std::string> circumstancesOf(const ActionExample& example) {
    std::vector<std::string> sentences;
    const ExampleFile& file = example.file;
    if (!file.folder.empty())
        sentences.push_back(fmt::format("in the folder {}", file.folder));
    if (!file.modified.empty())
        sentences.push_back(fmt::format("last changed {}", file.modified));
    if (!file.note.empty())
        sentences.emplace_back(file.note);
    if (!file.list.empty())
        sentences.push_back(fmt::format("with the list {}", Json(text::toUtf8(file.list)).dump()));
    return sentences;
}

} // namespace tavrin::actionDescriptions
