#include "ActionDescriptions.h"
#include "ActionNames.h"
#include "ActionTrial.h"
#include "Catalogue.h"
#include "Commands.h"
#include "Terminal.h"
#include "support/text/DisplayText.h"
#include "support/text/Text.h"

#include <fmt/format.h>

namespace tavrin {

namespace {

using Entries = std::vector<const ActionEntry*>;

Entries allEntries(const ActionList& list) {
    Entries all;
    for (const auto& indexes : list.categoryToActionMapping())
        for (const std::int32_t index : indexes)
            all.push_back(list.entryForName(list.nameForPopUpIndex(index)));
    return all;
}

Entries entriesFor(const ActionList& list, const std::string& name) {
    if (name.empty())
        return allEntries(list);
    Entries meant = actionNames::meantBy(name);
    if (meant.empty())
        throw UsageError(actionNames::complaintAbout(name));
    return meant;
}

/// A line for each under their categories. A terminal need not show the names for stored lists, for which it
/// is too narrow.
std::string overview(const Entries& entries, bool isForPeople) {
    std::string text;
    const ActionEntry* last = nullptr;
    for (const ActionEntry* entry : entries) {
        if (!last || last->category != entry->category)
            text += fmt::format("{}{}\n", text.empty() ? "" : "\n", categoryLabel(entry->category));
        last = entry;
        const std::string words = actionNames::recipeWords(*entry);
        text += isForPeople ? fmt::format("  {:<20} {}\n", words, entry->label)
                            : fmt::format("  {:<42} {:<36} {}\n", entry->name, entry->label, words);
    }
    return text;
}

std::string descriptions(const Entries& entries, bool json) {
    std::string text;
    for (const ActionEntry* entry : entries) {
        if (json)
            text += actionDescriptions::json(*entry);
        else
            text += (text.empty() ? "" : "\n") + actionDescriptions::text(*entry);
    }
    return text;
}

std::string object(const actionTrial::Trial& trial) {
    std::string json = "{\"action\":";
    display::appendJson(text::fromUtf8(trial.action), json);
    json += ",\"recipe\":";
    display::appendJson(text::fromUtf8(trial.recipe), json);
    json += ",\"name\":";
    display::appendJson(trial.name, json);
    json += ",\"finalName\":";
    display::appendJson(trial.newName, json);
    return json + "}\n";
}

std::string trials(const Entries& entries, const ActionsOptions& options, const Terminal& terminal) {
    std::vector<std::u16string> names;
    for (const std::string& name : options.triedNames)
        names.push_back(text::fromBytes(name));
    const auto shown = [&](const std::u16string& name) {
        return name.empty() ? "(no name)" : terminal.shown(text::toBytes(name).value_or(text::toUtf8(name)));
    };
    std::string text;
    const std::string* lastRecipe = nullptr;
    const std::vector<actionTrial::Trial> all = actionTrial::trials(entries, names);
    if (all.empty())
        throw UsageError(fmt::format(
            "the examples of \"{}\" need a file; \"tvrn RECIPE FILE\" shows what it does", options.name));
    for (const actionTrial::Trial& trial : all) {
        if (options.json) {
            text += object(trial);
            continue;
        }
        if (!lastRecipe || *lastRecipe != trial.recipe)
            text += trial.recipe + '\n';
        lastRecipe = &trial.recipe;
        const std::string name = shown(trial.name);
        text += trial.newName == trial.name ? fmt::format("    {} (unchanged)\n", name)
                                            : fmt::format("    {} → {}\n", name, shown(trial.newName));
    }
    return text;
}

std::string answer(const ActionList& list, const ActionsOptions& options, const Terminal& terminal) {
    const Entries entries = entriesFor(list, options.name);
    if (!options.triedNames.empty())
        return trials(entries, options, terminal);
    if (options.name.empty() && !options.json)
        return overview(entries, terminal.outputIsTerminal());
    return descriptions(entries, options.json);
}

} // namespace

ExitStatus runActionsCommand(const ActionsOptions& options) {
    Catalogue catalogueOfActions;
    Terminal terminal;
    terminal.output().append(answer(catalogueOfActions.actions(), options, terminal));
    return terminal.finish();
}

} // namespace tavrin
