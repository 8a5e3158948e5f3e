#include "documents/RecipeInCommand.h"

#include "platform/desktop/Quoting.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace tavrin {

namespace {

using Words = std::span<const std::string>;

constexpr std::array<std::string_view, 4> commandsWithRecipe{"preview", "rename", "edit", "recipe"};
constexpr std::array<std::string_view, 6> otherCommands{"actions", "history", "presets",
                                                        "redo",    "tags",    "undo"};
/// Of the long options and the letters, those whose value is the next word.
constexpr std::array<std::string_view, 17> optionsWithValue{
    "setting",    "on-conflict", "store", "format", "color", "recipe",   "preset",  "action", "set",
    "files-from", "type",        "depth", "newer",  "older", "complete", "include", "exclude"};
constexpr std::string_view lettersWithValue = "efpT";

bool isIn(std::span<const std::string_view> names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

/// Goes through the words behind the program's name.
class Reader {
  public:
    RecipeInCommand read(Words words) {
        if (!words.empty() && isIn(commandsWithRecipe, words.front())) {
            areOperandsPaths = words.front() == "edit";
            words = words.subspan(1);
        } else if (!words.empty() && isIn(otherCommands, words.front()))
            return {{}, "The line runs a command that takes no recipe."};
        for (rest = words; !rest.empty() && found.problem.empty();)
            readWord(take());
        if (!hasText && !operand && found.problem.empty())
            found.problem = "There is no recipe in the line.";
        else if (!hasText && operand)
            found.recipe = *operand;
        return found;
    }

  private:
    std::string take() {
        std::string word = rest.front();
        rest = rest.subspan(1);
        return word;
    }
    std::string takeValue() { return rest.empty() ? std::string() : take(); }

    void readWord(const std::string& word) {
        if (areOperands || word.size() < 2 || word.front() != '-') {
            if (!operand && !areOperandsPaths)
                operand = word;
        } else if (word == "--") {
            areOperands = true;
        } else if (word.starts_with("--")) {
            const std::size_t equals = word.find('=');
            const std::string name = word.substr(2, equals == word.npos ? word.npos : equals - 2);
            if (isIn(optionsWithValue, name))
                useOption(name, equals == word.npos ? takeValue() : word.substr(equals + 1));
        } else {
            readLetters(word.substr(1));
        }
    }

    /// A letter with a value comes last, or has it behind itself.
    void readLetters(std::string_view letters) {
        const std::size_t place = letters.find_first_of(lettersWithValue);
        if (place == letters.npos)
            return;
        const std::string_view behind = letters.substr(place + 1);
        useOption(letters.substr(place, 1), behind.empty() ? takeValue() : std::string(behind));
    }

    void useOption(std::string_view name, const std::string& value) {
        if (name == "e") {
            found.recipe += (hasText ? "\n" : "") + value;
            hasText = true;
        } else if (name == "f" || name == "recipe") {
            found.problem = "The line takes its steps from a file: open that file instead.";
        } else if (name == "p" || name == "preset") {
            found.problem = "The line takes its steps from a preset: choose it in the menu Presets.";
        } else if (name == "action") {
            found.problem = "The line names its steps by --action: “tvrn recipe” turns them into a recipe.";
        }
    }

    Words rest;
    RecipeInCommand found;
    std::optional<std::string> operand; ///< the first
    bool hasText = false;               ///< by an option
    bool areOperands = false;           ///< all that follows
    bool areOperandsPaths = false;      ///< the first one too
};

/// The words behind the program's name, where the program is ours.
std::optional<Words> argumentsOf(Words command) {
    // As lines stand in instructions, behind a prompt.
    if (!command.empty() && (command.front() == "$" || command.front() == "sudo"))
        command = command.subspan(1);
    if (command.empty() || lastComponent(command.front()) != "tvrn")
        return std::nullopt;
    return command.subspan(1);
}

} // namespace

std::optional<RecipeInCommand> RecipeInCommand::find(std::string_view lines) {
    const auto commands = shellCommands(lines);
    if (!commands)
        return std::nullopt;
    for (const std::vector<std::string>& command : *commands)
        if (const std::optional<Words> arguments = argumentsOf(command))
            return Reader().read(*arguments);
    return std::nullopt;
}

} // namespace tavrin
