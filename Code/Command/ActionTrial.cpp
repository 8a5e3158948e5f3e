#include "ActionTrial.h"

#include "ActionDescriptions.h"
#include "actions/BaseRenameAction.h"
#include "support/text/Text.h"

namespace tavrin::actionTrial {

namespace {

/// Within an action a slash of a name is a colon, and the other way round.
std::u16string exchanged(std::u16string name, char16_t from, char16_t to) {
    text::replaceUnit(name, from, to);
    return name;
}

std::u16string newNameOf(const std::u16string& name, BaseRenameAction& action) {
    InputContext input;
    OutputContext output;
    input.currentName = exchanged(name, u':', u'/');
    action.executeWithInputContext(input, output);
    return exchanged(std::move(output.newName), u'/', u':');
}

} // namespace

std::vector<Trial> trials(std::span<const ActionEntry* const> entries,
                          std::span<const std::u16string> names) {
    std::vector<Trial> all;
    for (const ActionEntry* entry : entries) {
        std::string lastRecipe;
        for (const ActionExample& example : entry->examples) {
            const std::string recipe = actionDescriptions::recipeOf(*entry, example);
            if (recipe == lastRecipe || !actionDescriptions::circumstancesOf(example).empty())
                continue;
            const auto action = entry->make();
            for (const auto& [key, value] : example.parameters)
                action->setValue(value, key);
            lastRecipe = recipe;
            for (const std::u16string& name : names)
                all.push_back({entry->name, recipe, name, newNameOf(name, *action)});
        }
    }
    return all;
}

} // namespace tavrin::actionTrial
