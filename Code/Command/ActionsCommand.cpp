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

/// An action with its place in the menus.
struct Entry {
    std::unique_ptr<BaseRenameAction> action;
    std::string label;
    std::string category;
};

Entry entryAt(const ActionList& list, std::int32_t index) {
    const auto category = list.translateActionIndexToCategoryIndex(index).value_or(0);
    std::vector<std::u16string> categories = list.categoryPopUpMenuItems();
    std::erase(categories, u"");
    const auto place = static_cast<std::size_t>(category);
    return {
        ActionList::sharedActionList().newActionForName(list.nameForPopUpIndex(index), ActionUse::privateRun),
        text::toUtf8(list.popUpMenuItems().at(static_cast<std::size_t>(index))),
        place < categories.size() ? text::toUtf8(categories[place]) : std::string()};
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
              {"defaultWhenAbsent", jsonValue(propertyValue(parameter.whenAbsent))}};
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

std::string object(const Entry& entry) {
    Json json{{"name", entry.action->actionName()},
              {"label", entry.label},
              {"category", entry.category},
              {"parameters", Json::array()},
              {"examples", Json::array()}};
    for (const ParameterDescription& parameter : entry.action->parameters())
        json["parameters"].push_back(jsonParameter(parameter));
    for (const ActionExample& example : entry.action->examples())
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

std::string shownExample(const Entry& entry, const ActionExample& example) {
    std::string text = "  --action " + quotedForShell(entry.action->actionName());
    for (const auto& [key, value] : example.parameters)
        text += " --set " + quotedForShell(key + "=" + text::toUtf8(textValue(value)));
    const std::vector<std::string> circumstances = circumstancesOf(example);
    const std::string about =
        circumstances.empty() ? "" : fmt::format("    ({})", fmt::join(circumstances, ", "));
    return text + fmt::format("\n    {}{}\n    {}\n", text::toUtf8(example.before), about,
                              text::toUtf8(example.after));
}

std::string description(const Entry& entry) {
    std::string text = fmt::format("{}\n{}: {}\n\nParameters, with their defaults:\n",
                                   entry.action->actionName(), entry.category, entry.label);
    for (const ParameterDescription& parameter : entry.action->parameters())
        text += shownParameter(parameter);
    const std::vector<ActionExample> examples = entry.action->examples();
    if (!examples.empty())
        text += "\nExamples:\n";
    for (const ActionExample& example : examples)
        text += shownExample(entry, example);
    return text;
}

std::string overview(const std::vector<Entry>& entries) {
    std::string text;
    std::string category;
    for (const Entry& entry : entries) {
        if (entry.category != category)
            text += fmt::format("{}{}\n", text.empty() ? "" : "\n", entry.category);
        category = entry.category;
        text += fmt::format("  {:<42} {}\n", entry.action->actionName(), entry.label);
    }
    return text;
}

std::string catalogue(const ActionList& list, bool json) {
    std::vector<Entry> entries;
    for (std::int32_t index = 0; index < list.count(); ++index) {
        if (!list.nameForPopUpIndex(index).empty())
            entries.push_back(entryAt(list, index));
    }
    if (!json)
        return overview(entries);
    std::string lines;
    for (const Entry& entry : entries)
        lines += object(entry);
    return lines;
}

std::string oneAction(const ActionList& list, const ActionsOptions& options) {
    const std::optional<std::int32_t> index = list.popUpMenuIndexForName(options.name);
    if (!index)
        throw UsageError(fmt::format("there is no action \"{}\"; \"tvrn actions\" lists them", options.name));
    const Entry entry = entryAt(list, *index);
    return options.json ? object(entry) : description(entry);
}

} // namespace

ExitStatus runActionsCommand(const ActionsOptions& options) {
    const Catalogue catalogueOfActions;
    const ActionList& list = catalogueOfActions.actions();
    Terminal terminal;
    terminal.output().append(options.name.empty() ? catalogue(list, options.json) : oneAction(list, options));
    return terminal.finish();
}

} // namespace tavrin
