#include "CommandLine.h"

#include "ExitStatus.h"
#include "HelpTexts.h"
#include "documents/Settings.h"
#include "documents/recipe/RecipeText.h"
#include "documents/recipe/RecipeWords.h"
#include "support/application/Version.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <optional>

namespace tavrin {

namespace {

CommandLineEnd usageError(std::string_view command, std::string_view what) {
    const std::string name = command.empty() ? "tvrn" : fmt::format("tvrn {}", command);
    return {static_cast<int>(ExitStatus::badUsage), fmt::format("{}: {}", name, what),
            fmt::format("Try \"{} --help\".", name)};
}

/// The library's message, but where a value is missing: there it names the type of the value, which ours have
/// not.
std::string sentenceOf(const CLI::ParseError& error) {
    const std::string_view message = error.what();
    return message.ends_with(" missing")
               ? fmt::format("{} needs a value", message.substr(0, message.find(':')))
               : std::string(message);
}

std::string numberOfConflictRule(std::string_view rule) {
    return rule == "skip" ? "1" : rule == "stop" ? "2" : "0";
}

/// The parser of one subcommand. Each is a parser of its own, so that no path is taken for a subcommand.
class Parser {
  public:
    Parser(std::string command, const std::string& help) : name(std::move(command)), helpText(help) {
        app.allow_windows_style_options(false);
        app.set_help_flag();
        app.add_flag("-h,--help", helpWanted);
        color = app.add_option("--color")->expected(1)->check(CLI::IsMember({"auto", "always", "never"}));
    }

    /// Adds what preview and rename share.
    void addRunOptions() {
        recipe.emplace(app);
        setting = addRepeatable(app, "--setting");
        recursive = app.add_flag("-r,--recursive");
        onConflict = addRepeatable(app, "--on-conflict")->check(CLI::IsMember({"number", "skip", "stop"}));
        store = app.add_option("--store")->expected(1)->check(CLI::IsMember({"memory", "file"}));
        selection.emplace(app);
    }

    /// Adds what rename and edit share.
    void addRenameOptions(RenameOptions& options) {
        app.add_flag("-i,--interactive", options.interactive);
        CLI::Option* quiet = app.add_flag("-q,--quiet", options.quiet);
        app.add_flag("-v,--verbose", options.verbose)->excludes(quiet);
        CLI::Option* none = app.add_flag("--no-history", options.noHistory);
        app.add_flag("--require-history", options.requireHistory)->excludes(none);
    }

    /// Parses, and makes the result unless help is wanted or something is wrong.
    CommandLine parse(std::vector<std::string> arguments, const std::function<CommandLine()>& result) {
        try {
            arguments = takeOperands(std::move(arguments));
            std::ranges::reverse(arguments); // as the library wants them
            app.parse(std::move(arguments));
            if (helpWanted)
                return CommandLineEnd{0, helpText};
            return result();
        } catch (const CLI::ParseError& error) {
            if (helpWanted)
                return CommandLineEnd{0, helpText};
            return usageError(name, sentenceOf(error));
        } catch (const UsageError& error) {
            return usageError(name, error.what());
        }
    }

    /// Where the recipe comes from: an option alone, or an option or the first operand.
    enum class RecipeFrom { option, optionOrOperand };

    /// What the shared options say.
    RunOptions runOptions(RecipeFrom from = RecipeFrom::optionOrOperand) {
        RunOptions options;
        std::map<const CLI::Option*, std::size_t> taken;
        for (const CLI::Option* option : app.parse_order()) {
            const auto next = [&] { return option->results().at(taken[option]++); };
            if (option == setting)
                options.settings.push_back(keyAndValue("--setting", next()));
            else if (option == recursive)
                options.settings.emplace_back(settingKey::processSubfolders, "1");
            else if (option == onConflict)
                options.settings.emplace_back(settingKey::onConflict, numberOfConflictRule(next()));
        }
        options.recipe = from == RecipeFrom::option ? recipe->read() : recipe->readOrTake(operands);
        options.storeInFile = *store && store->results().at(0) == "file";
        options.selection = selection->read();
        if (operands.empty() && !options.selection.filesFrom)
            throw UsageError("no path is given");
        options.paths = operands;
        return options;
    }

    /// Of a command that is about nothing else.
    void addRecipeOptions() { recipe.emplace(app); }
    RecipeSource recipeAlone() {
        RecipeSource source = recipe->readOrTake(operands);
        if (!operands.empty())
            throw UsageError("it takes one recipe and no paths");
        return source;
    }

    [[nodiscard]] ColorChoice colorChoice() const {
        if (!*color || color->results().at(0) == "auto")
            return ColorChoice::automatic;
        return color->results().at(0) == "always" ? ColorChoice::always : ColorChoice::never;
    }

    /// What stands on the command line beside the options, as it stands there.
    const std::vector<std::string>& givenOperands() const { return operands; }

    /// Takes away those that stand behind an option that is given.
    std::vector<std::string> takeOperandsBehind(const std::string& option) {
        const auto first = operands.begin() + static_cast<std::ptrdiff_t>(operandsInFront.at(option));
        std::vector<std::string> taken(std::make_move_iterator(first),
                                       std::make_move_iterator(operands.end()));
        operands.erase(first, operands.end());
        return taken;
    }

    /// The one that there may be; empty without it.
    std::string onlyOperand(std::string_view what) const {
        if (operands.size() > 1)
            throw UsageError(fmt::format("more than one {} is given", what));
        if (!operands.empty() && operands.front().empty())
            throw UsageError(fmt::format("the name of the {} is empty", what));
        return operands.empty() ? std::string() : operands.front();
    }

    CLI::App app;

  private:
    /// Keeps the operands, and answers the options with their values. The library must not see operands: it
    /// reads a meaning into brackets, numbers and the like.
    std::vector<std::string> takeOperands(std::vector<std::string> arguments) {
        std::vector<std::string> options;
        for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
            if (*argument == "--") {
                operands.insert(operands.end(), ++argument, arguments.end());
                break;
            }
            if (argument->size() < 2 || argument->front() != '-') {
                operands.push_back(std::move(*argument));
                continue;
            }
            const bool takesNext = argument->starts_with("--") ? takeWord(std::move(*argument), options)
                                                               : takeLetters(*argument, options);
            if (takesNext && std::next(argument) != arguments.end())
                options.push_back(std::move(*++argument));
        }
        return options;
    }

    static bool takesValue(const CLI::Option* option) {
        return option && option->get_items_expected_max() > 0;
    }

    /// Whether the next argument is the option's value; so too in the next.
    bool takeWord(std::string word, std::vector<std::string>& options) {
        const CLI::Option* option = app.get_option_no_throw(word);
        operandsInFront.emplace(word, operands.size());
        options.push_back(std::move(word));
        return takesValue(option);
    }

    /// Letters behind one hyphen; what is behind a letter that takes a value is that value.
    bool takeLetters(const std::string& given, std::vector<std::string>& options) const {
        std::string_view argument = given;
        for (argument.remove_prefix(1); !argument.empty(); argument.remove_prefix(1)) {
            const std::string letter{'-', argument.front()};
            const CLI::Option* option = app.get_option_no_throw(letter);
            if (argument.front() == '-') // the library would take it for the end of the options
                throw UsageError(fmt::format("The following argument was not expected: {}", given));
            if (!option) {
                options.push_back(fmt::format("-{}", argument));
                return false;
            }
            options.push_back(letter);
            if (takesValue(option)) {
                if (argument.size() > 1)
                    options.emplace_back(argument.substr(1));
                return argument.size() == 1;
            }
        }
        return false;
    }

    std::string name;
    const std::string& helpText;
    bool helpWanted = false;
    CLI::Option* color = nullptr;
    std::optional<RecipeParser> recipe;
    CLI::Option* setting = nullptr;
    CLI::Option* recursive = nullptr;
    CLI::Option* onConflict = nullptr;
    CLI::Option* store = nullptr;
    std::optional<SelectionParser> selection;
    std::vector<std::string> operands;
    std::map<std::string, std::size_t> operandsInFront; ///< by the option in long form
};

/// The options of a preview alone.
class PreviewParser {
  public:
    explicit PreviewParser(CLI::App& app)
        : format(app.add_option("--format")->check(CLI::Range(0, 2))), json(app.add_flag("-j,--json")),
          affected(app.add_flag("--affected")), all(app.add_flag("-a,--all")),
          check(app.add_flag("-c,--check")) {
        json->excludes(format);
        all->excludes(affected);
    }

    [[nodiscard]] PreviewOptions read(RunOptions run, ColorChoice color) const {
        PreviewOptions options;
        options.format = *format ? format->as<int>() : 0;
        options.json = !json->empty();
        options.affected = !affected->empty();
        options.all = !all->empty();
        options.check = !check->empty();
        options.color = color;
        options.null = run.selection.null;
        options.isForPrograms = *format || options.json || options.null;
        if (options.json && options.null && !run.selection.filesFrom)
            throw UsageError("--json excludes --null");
        options.run = std::move(run);
        return options;
    }
    /// Throws UsageError where one is given, for a command that knows none of them.
    void refuse() const {
        for (const CLI::Option* option : {format, json, affected, all, check})
            if (*option)
                throw UsageError(fmt::format("The following argument was not expected: --{}",
                                             option->get_lnames().front()));
    }

  private:
    CLI::Option* format;
    CLI::Option* json;
    CLI::Option* affected;
    CLI::Option* all;
    CLI::Option* check;
};

CommandLine parsePreview(std::vector<std::string> arguments) {
    Parser parser("preview", help::preview);
    parser.addRunOptions();
    const PreviewParser preview(parser.app);
    return parser.parse(std::move(arguments),
                        [&] { return preview.read(parser.runOptions(), parser.colorChoice()); });
}

/// Of `rename`, and of a line without a command, which previews unless it is told to rename. `-n` makes a
/// preview of either, whatever else is said.
CommandLine parseRename(std::vector<std::string> arguments, bool hasCommand) {
    RenameOptions options;
    bool executes = hasCommand;
    bool isDryRun = false;
    Parser parser(hasCommand ? "rename" : "", hasCommand ? help::rename : help::overview);
    parser.addRunOptions();
    parser.addRenameOptions(options);
    const PreviewParser preview(parser.app);
    parser.app.add_flag("-x,--execute", executes);
    parser.app.add_flag("-n,--dry-run", isDryRun);
    return parser.parse(std::move(arguments), [&]() -> CommandLine {
        if (!executes || isDryRun)
            return preview.read(parser.runOptions(), parser.colorChoice());
        preview.refuse();
        options.run = parser.runOptions();
        return options;
    });
}

CommandLine parseRecipe(std::vector<std::string> arguments) {
    using Form = RecipeTextOptions::Form;
    RecipeTextOptions options;
    Parser parser("recipe", help::recipe);
    parser.addRecipeOptions();
    CLI::Option* lines = parser.app.add_flag("--lines");
    CLI::Option* list = parser.app.add_flag("--plist")->excludes(lines);
    CLI::Option* json = parser.app.add_flag("-j,--json")->excludes(lines)->excludes(list);
    CLI::Option* complete = parser.app.add_option("--complete")->expected(1);
    return parser.parse(std::move(arguments), [&] {
        options.form = *lines ? Form::lines : *list ? Form::propertyList : *json ? Form::json : Form::line;
        if (*complete)
            options.complete = complete->results().at(0);
        else
            options.recipe = parser.recipeAlone();
        return options;
    });
}

constexpr int stopRule = static_cast<int>(Settings::OnConflict::stop);

CommandLine parseEdit(std::vector<std::string> arguments) {
    EditOptions options;
    Parser parser("edit", help::edit);
    parser.addRunOptions();
    parser.addRenameOptions(options.rename);
    parser.app.add_flag("-n,--dry-run", options.dryRun);
    return parser.parse(std::move(arguments), [&] {
        options.rename.run = parser.runOptions(Parser::RecipeFrom::option);
        for (const auto& [key, value] : options.rename.run.settings)
            if (key == settingKey::onConflict && value != std::to_string(stopRule))
                throw UsageError("names that you edit are never numbered or left out: the rule is stop");
        options.color = parser.colorChoice();
        return options;
    });
}

CommandLine parseHistory(std::vector<std::string> arguments) {
    HistoryOptions options;
    Parser parser("history", help::history);
    CLI::Option* json = parser.app.add_flag("-j,--json", options.json);
    CLI::Option* clear = parser.app.add_flag("--clear", options.clear)->excludes(json);
    CLI::Option* forget = parser.app.add_option("--forget")->expected(1)->excludes(json)->excludes(clear);
    return parser.parse(std::move(arguments), [&] {
        options.run = parser.onlyOperand("run");
        if (*forget)
            options.forget = forget->results().at(0);
        if (*forget && options.forget.empty())
            throw UsageError("the name of the run is empty");
        if (!options.run.empty() && (options.clear || *forget))
            throw UsageError("--clear and --forget take no further run");
        return options;
    });
}

CommandLine parseTakeBack(std::vector<std::string> arguments, bool isRedo) {
    TakeBackOptions options;
    options.isRedo = isRedo;
    Parser parser(isRedo ? "redo" : "undo", isRedo ? help::redo : help::undo);
    CLI::Option* preview = parser.app.add_flag("--preview", options.preview);
    parser.app.add_flag("-j,--json", options.json)->needs(preview);
    parser.app.add_flag("--replaced", options.replaced);
    parser.app.add_flag("-i,--interactive", options.interactive)->excludes(preview);
    CLI::Option* quiet = parser.app.add_flag("-q,--quiet", options.quiet);
    parser.app.add_flag("-v,--verbose", options.verbose)->excludes(quiet)->excludes(preview);
    return parser.parse(std::move(arguments), [&] {
        options.run = parser.onlyOperand("run");
        return options;
    });
}

CommandLine parseActions(std::vector<std::string> arguments) {
    ActionsOptions options;
    Parser parser("actions", help::actions);
    parser.app.add_flag("-j,--json", options.json);
    CLI::Option* names = parser.app.add_flag("--try");
    return parser.parse(std::move(arguments), [&] {
        if (*names)
            options.triedNames = parser.takeOperandsBehind("--try");
        for (const std::string& name : options.triedNames)
            if (name.empty() || name.find('/') != name.npos)
                throw UsageError(fmt::format("--try \"{}\": expected a name, not a path", name));
        if (*names && options.triedNames.empty())
            throw UsageError("--try needs a name");
        options.name = parser.onlyOperand("name");
        return options;
    });
}

CommandLine parseTags(std::vector<std::string> arguments) {
    TagsOptions options;
    Parser parser("tags", help::tags);
    parser.app.add_flag("-j,--json", options.json);
    const ListParser list(parser.app);
    return parser.parse(std::move(arguments), [&] {
        options.paths = parser.givenOperands();
        list.read(options.selection);
        if (options.paths.empty() && !options.selection.filesFrom)
            throw UsageError("no file is given");
        return options;
    });
}

CommandLine parsePresets(std::vector<std::string> arguments) {
    PresetsOptions options;
    Parser parser("presets", help::presets);
    CLI::Option* json = parser.app.add_flag("-j,--json", options.json);
    parser.app.add_flag("--names", options.namesOnly)->excludes(json);
    return parser.parse(std::move(arguments), [&] {
        if (!parser.givenOperands().empty())
            throw UsageError("it takes no names");
        return options;
    });
}

} // namespace

CommandLine parseCommandLine(std::vector<std::string> arguments) {
    using Parse = CommandLine (*)(std::vector<std::string>);
    static const std::map<std::string, Parse, std::less<>> commands{
        {"preview", parsePreview},
        {"rename", [](std::vector<std::string> rest) { return parseRename(std::move(rest), true); }},
        {"edit", parseEdit},
        {"recipe", parseRecipe},
        {"history", parseHistory},
        {"undo", [](std::vector<std::string> rest) { return parseTakeBack(std::move(rest), false); }},
        {"redo", [](std::vector<std::string> rest) { return parseTakeBack(std::move(rest), true); }},
        {"actions", parseActions},
        {"tags", parseTags},
        {"presets", parsePresets},
    };
    if (arguments.empty())
        return usageError("", "no command is given");
    const std::string& first = arguments.front();
    if (const auto command = commands.find(first); command != commands.end())
        return command->second({std::next(arguments.begin()), arguments.end()});
    if (first == "--help" || first == "-h")
        return CommandLineEnd{0, help::overview};
    if (first == "--version" || first == "-V")
        return CommandLineEnd{0, fmt::format("tvrn (Tavrin) {}\nrecipe language {}\n", programVersion,
                                             RecipeText::languageVersion)};
    if (arguments.size() == 1) { // there are no paths
        std::vector<std::string_view> names;
        for (const auto& [name, parse] : commands)
            names.push_back(name);
        if (const auto nearest = nearestWord(first, names); !nearest.empty())
            return usageError(
                "", fmt::format("there is no command \"{}\"; did you mean \"{}\"?", first, nearest));
    }
    return parseRename(std::move(arguments), false);
}

} // namespace tavrin
