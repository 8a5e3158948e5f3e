#include "Catalogue.h"
#include "Commands.h"
#include "Terminal.h"
#include "actions/ActionList.h"
#include "platform/desktop/Quoting.h"
#include "support/text/Text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace tavrin {

namespace {

using Json = nlohmann::ordered_json;

/// An action of the catalogue, made.
struct MadeAction {
    const ActionEntry& entry;
    std::unique_ptr<BaseRenameAction> action;
};

MadeAction actionAt(ActionList& list, std::int32_t index) {
    const std::string name = list.nameForPopUpIndex(index);
    return {*list.entryForName(name), list.newActionForName(name, ActionUse::privateRun)};
}

// --- For programs ---

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

Json jsonParameter(const ParameterDescription& parameter) {
    Json json{{"key", parameter.key},
              {"label", parameter.label},
              {"type", parameter.isText() ? "text" : "number"},
              {"control", controlName(parameter.kind)},
              {"default", jsonValue(propertyValue(parameter.whenNew))},
              {"defaultWhenAbsent", jsonValue(propertyValue(parameter.whenNew))}};
    for (const ParameterChoice& choice : parameter.choices)
        json["choices"].push_back({{"value", choice.value}, {"label", choice.label}});
    if (parameter.kind == ParameterKind::number) {
        json["minimum"] = parameter.minimum;
        json["maximum"] = parameter.maximum;
    }
    if (!parameter.shownWhenKey.empty())
        json["shownWhen"] = {{"key", parameter.shownWhenKey}, {"value", parameter.shownWhenValue}};
    return json;
}

/// What an example says of the file beside its name.
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

Json jsonExample(const ActionExample& example) {
    Json parameters = Json::object();
    for (const auto& [key, value] : example.parameters)
        parameters[key] = jsonValue(value);
    Json json{{"parameters", parameters},
              {"before", text::toUtf8(example.before)},
              {"after", text::toUtf8(example.after)}};
    const std::vector<std::string> circumstances = circumstancesOf(example);
    if (!circumstances.empty())
        json["circumstances"] = circumstances;
    return json;
}

std::string object(const MadeAction& made) {
    Json json{{"name", made.entry.name},
              {"label", made.entry.label},
              {"category", categoryLabel(made.entry.category)},
              {"parameters", Json::array()},
              {"examples", Json::array()}};
    for (const ParameterDescription& parameter : made.action->parameters())
        json["parameters"].push_back(jsonParameter(parameter));
    for (const ActionExample& example : made.entry.examples)
        json["examples"].push_back(jsonExample(example));
    return json.dump() + '\n';
}

// --- For people ---

std::string shownDefault(const ParameterDescription& parameter) {
    const std::string value = text::toUtf8(textValue(propertyValue(parameter.whenNew)));
    return parameter.isText() ? fmt::format("\"{}\"", value) : value;
}

std::string shownParameter(const ParameterDescription& parameter) {
    std::string text =
        fmt::format("  {:<20} {} ({})\n", parameter.key, parameter.label, shownDefault(parameter));
    for (const ParameterChoice& choice : parameter.choices)
        text += fmt::format("  {:<20}   {:>2}: {}\n", "", choice.value, choice.label);
    if (!parameter.shownWhenKey.empty())
        text += fmt::format("  {:<20}   counts while {} is {}\n", "", parameter.shownWhenKey,
                            parameter.shownWhenValue);
    return text;
}

std::string shownExample(const ActionEntry& entry, const ActionExample& example) {
    std::string text = "  --action " + quotedForShell(std::string(entry.name));
    for (const auto& [key, value] : example.parameters)
        text += " --set " + quotedForShell(key + "=" + text::toUtf8(textValue(value)));
    const std::vector<std::string> circumstances = circumstancesOf(example);
    const std::string about =
        circumstances.empty() ? "" : fmt::format("    ({})", fmt::join(circumstances, ", "));
    return text + fmt::format("\n    {}{}\n    {}\n", text::toUtf8(example.before), about,
                              text::toUtf8(example.after));
}

std::string description(const MadeAction& made) {
    const ActionEntry& entry = made.entry;
    std::string text = fmt::format("{}\n{}: {}\n\nParameters, with their defaults:\n", entry.name,
                                   categoryLabel(entry.category), entry.label);
    for (const ParameterDescription& parameter : made.action->parameters())
        text += shownParameter(parameter);
    if (!entry.examples.empty())
        text += "\nExamples:\n";
    for (const ActionExample& example : entry.examples)
        text += shownExample(entry, example);
    return text;
}

std::string overview(ActionList& list) {
    std::string text;
    for (const auto& indexes : list.categoryToActionMapping()) {
        for (const std::int32_t index : indexes) {
            const ActionEntry& entry = *list.entryForName(list.nameForPopUpIndex(index));
            if (index == indexes.front())
                text += fmt::format("{}{}\n", text.empty() ? "" : "\n", categoryLabel(entry.category));
            text += fmt::format("  {:<42} {}\n", entry.name, entry.label);
        }
    }
    return text;
}

std::string objects(ActionList& list) {
    std::string lines;
    for (const auto& indexes : list.categoryToActionMapping())
        for (const std::int32_t index : indexes)
            lines += object(actionAt(list, index));
    return lines;
}

std::string oneAction(ActionList& list, const ActionsOptions& options) {
    const std::optional<std::int32_t> index = list.popUpMenuIndexForName(options.name);
    if (!index)
        throw UsageError(fmt::format("there is no action \"{}\"; \"tvrn actions\" lists them", options.name));
    const MadeAction made = actionAt(list, *index);
    return options.json ? object(made) : description(made);
}

std::string answer(ActionList& list, const ActionsOptions& options) {
    if (!options.name.empty())
        return oneAction(list, options);
    return options.json ? objects(list) : overview(list);
}

} // namespace

ExitStatus runActionsCommand(const ActionsOptions& options) {
    Catalogue catalogueOfActions;
    Terminal terminal;
    terminal.output().append(answer(catalogueOfActions.actions(), options));
    return terminal.finish();
}

} // namespace tavrin
