#include "shell/commands/RecipeCommands.h"

#include "documents/RecipeFile.h"
#include "documents/RecipeInCommand.h"
#include "platform/desktop/Quoting.h"
#include "shell/asking/FrontEnd.h"
#include "shell/commands/ActionListCommands.h"
#include "shell/start/StoreOwner.h"
#include "store/contexts/StoreContext.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <mutex>
#include <utility>
#include <variant>

namespace tavrin {

namespace {

/// Of a text, in code units: more than any recipe has, in any of its forms.
constexpr std::size_t mostUnits = 4 << 20;
constexpr std::size_t mostChanges = 20;

std::string asSentence(std::string text) {
    if (text.empty())
        return text;
    if (text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text.ends_with('?') || text.ends_with('.') ? text : text + '.';
}

RecipeCommands::Outcome refused(const RecipeError& error) {
    if (!error.remark)
        return {.title = asSentence(error.message)};
    const RecipeText::Remark& remark = *error.remark;
    const std::string place = remark.line == 1
                                  ? fmt::format("Column {}", remark.column)
                                  : fmt::format("Line {}, column {}", remark.line, remark.column);
    return {.title = fmt::format("{}: {}.", place, remark.message), .text = asSentence(remark.hint)};
}

std::string noteOf(const Recipe& recipe) {
    return recipe.notes.empty() ? std::string() : asSentence(recipe.notes.front().sentence());
}

/// A recipe as it stands, or the one that a command line names. A text that is neither is told to be no
/// recipe.
RecipeFile::Result read(std::string_view text) {
    RecipeFile::Result result = RecipeFile::fromBytes(text);
    if (std::holds_alternative<Recipe>(result))
        return result;
    const std::optional<RecipeInCommand> line = RecipeInCommand::find(text);
    if (!line)
        return result;
    if (!line->problem.empty())
        return RecipeError{line->problem};
    return RecipeFile::fromText(text::fromBytes(line->recipe));
}

} // namespace

RecipeCommands::RecipeCommands(ShellServices& shared, ActionListCommands& stepCommands, StoreOwner& owner)
    : services(shared), commands(stepCommands), store(owner),
      observation(shared.composite.registerObserver(*this, "actionList")) {}

// ---- writing

std::u16string RecipeCommands::line() const {
    return RecipeText::write(RecipeText::withoutStatus(services.composite.getFlatParameterList()));
}

std::u16string RecipeCommands::command() const {
    std::string command = "tvrn rename " + quotedForShellAsText(text::toUtf8(line()));
    StoreContext& context = store.managedObjectContext();
    const std::lock_guard lock(context.mutex());
    const std::size_t count = context.sourceItemCount();
    if (count == 0 || count > mostPaths)
        return text::fromUtf8(command + " PATH...");
    for (const SourceItem& item : context.sourceItems())
        command += ' ' + quotedForShellAsText(item.path);
    return text::fromUtf8(command);
}

// ---- reading

RecipeCommands::Outcome RecipeCommands::paste(std::u16string_view text) {
    if (text.size() > mostUnits)
        return {.title = "This is too long for a recipe."};
    const RecipeFile::Result result = read(text::toUtf8(text));
    if (const auto* error = std::get_if<RecipeError>(&result))
        return refused(*error);
    CompositeRenameAction& chain = services.composite;
    Change change{.place = chain.getCurrentActionIndexAsInt() + 1};
    auto steps = chain.stepsOf(std::get<Recipe>(result).flatParameterList);
    const Outcome outcome{.steps = steps.size(), .text = noteOf(std::get<Recipe>(result))};
    insert(change, std::move(steps));
    remember(std::move(change));
    showList();
    return outcome;
}

RecipeCommands::Outcome RecipeCommands::open(const std::string& path) {
    const RecipeFile::Result result = RecipeFile::read(path);
    if (const auto* error = std::get_if<RecipeError>(&result))
        return refused(*error);
    Change change{.otherChain = std::get<Recipe>(result).flatParameterList};
    exchangeChain(change);
    remember(std::move(change));
    showList();
    return {.steps = static_cast<std::size_t>(services.composite.count()),
            .text = noteOf(std::get<Recipe>(result))};
}

void RecipeCommands::showList() {
    if (services.composite.count() >= 2 && !services.settings.values().shouldShowMultistepDrawer)
        commands.showMultistepDrawer();
}

// ---- undoing

void RecipeCommands::insert(Change& change, CompositeRenameAction::Steps steps) {
    CompositeRenameAction& chain = services.composite;
    for (const auto& step : steps)
        change.pasted.insert(step.get());
    const auto count = static_cast<std::int32_t>(steps.size());
    const std::int32_t place = std::min(change.place, chain.count());
    chain.insertSteps(std::move(steps), place);
    chain.setCurrentActionIndex(place + count - 1);
}

/// The steps, whichever they are now, against those of the change.
void RecipeCommands::exchangeChain(Change& change) {
    PropertyDictionary present = services.composite.getFlatParameterList();
    services.composite.setFlatParameterList(std::exchange(change.otherChain, std::move(present)));
    services.frontEnd.actionListChanged();
}

void RecipeCommands::remember(Change change) {
    undone.clear();
    done.push_back(std::move(change));
    if (done.size() > mostChanges)
        done.erase(done.begin());
}

void RecipeCommands::undo() {
    if (done.empty())
        return;
    Change change = std::move(done.back());
    done.pop_back();
    CompositeRenameAction& chain = services.composite;
    if (!change.otherChain.empty()) {
        exchangeChain(change);
    } else if (!change.pasted.empty()) {
        // There is always a step.
        if (change.pasted.size() == static_cast<std::size_t>(chain.count()))
            chain.insertSteps(chain.stepsOf(CompositeRenameAction().getFlatParameterList()), 0);
        change.removed = chain.removeSteps(
            [pasted = std::exchange(change.pasted, {})](const auto& step) { return pasted.contains(&step); });
        chain.setCurrentActionIndex(std::max(0, change.place - 1));
    }
    undone.push_back(std::move(change));
}

void RecipeCommands::redo() {
    if (undone.empty())
        return;
    Change change = std::move(undone.back());
    undone.pop_back();
    if (!change.otherChain.empty())
        exchangeChain(change);
    else
        insert(change, std::exchange(change.removed, {}));
    done.push_back(std::move(change));
}

/// Steps that are gone are none of ours any more: others may come to lie where they lay.
void RecipeCommands::observeValueForKeyPath(const std::string&, BaseAction&,
                                            const std::optional<PropertyValue>&,
                                            const std::optional<PropertyValue>&) {
    std::unordered_set<const BaseRenameAction*> present;
    for (const auto& step : services.composite.getActionDictionaryList())
        present.insert(step.get());
    for (Change& change : done)
        std::erase_if(change.pasted, [&](const auto* step) { return !present.contains(step); });
}

} // namespace tavrin
