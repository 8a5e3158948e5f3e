#include "CommandLine.h"

#include "ExitStatus.h"
#include "HelpTexts.h"
#include "documents/Settings.h"
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

KeyAndValue keyAndValue(const std::string& option, const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        throw UsageError(fmt::format("{} {}: expected KEY=VALUE", option, text));
    return {text.substr(0, equals), text.substr(equals + 1)};
}

/// As the setting has it.
std::string numberOfConflictRule(std::string_view rule) {
    return rule == "skip" ? "1" : rule == "stop" ? "2" : "0";
}

/// An option that may be given any number of times, each time with one value. Its values are read back raw:
/// the library's conversions give brackets in a value a meaning of their own.
CLI::Option* addRepeatable(CLI::App& app, const std::string& name) {
    return app.add_option(name)
        ->expected(1, std::numeric_limits<int>::max())
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
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
        recipe = app.add_option("--recipe")->expected(1);
        preset = app.add_option("--preset")->expected(1);
        action = addRepeatable(app, "--action");
        parameter = addRepeatable(app, "--set");
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
            return usageError(name, error.what());
        } catch (const UsageError& error) {
            return usageError(name, error.what());
        }
    }

    /// What the shared options say.
    RunOptions runOptions(bool needsRecipe = true) const {
        RunOptions options;
        std::vector<RecipeStep> steps;
        std::map<const CLI::Option*, std::size_t> taken;
        for (const CLI::Option* option : app.parse_order()) {
            const auto next = [&, this] { return option->results().at(taken[option]++); };
            if (option == action)
                steps.push_back({next(), {}});
            else if (option == setting)
                options.settings.push_back(keyAndValue("--setting", next()));
            else if (option == recursive)
                options.settings.emplace_back(settingKey::processSubfolders, "1");
            else if (option == onConflict)
                options.settings.emplace_back(settingKey::onConflict, numberOfConflictRule(next()));
            else if (option == parameter) {
                if (steps.empty())
                    throw UsageError(fmt::format("--set {}: there is no --action before it", next()));
                steps.back().parameters.push_back(keyAndValue("--set", next()));
            }
        }
        options.hasRecipe = needsRecipe || *recipe || *preset || !steps.empty();
        if (options.hasRecipe)
            options.recipe = recipeSource(std::move(steps));
        options.storeInFile = *store && store->results().at(0) == "file";
        options.selection = selection->read();
        if (operands.empty() && !options.selection.filesFrom)
            throw UsageError("no path is given");
        options.paths = operands;
        return options;
    }

    [[nodiscard]] ColorChoice colorChoice() const {
        if (!*color || color->results().at(0) == "auto")
            return ColorChoice::automatic;
        return color->results().at(0) == "always" ? ColorChoice::always : ColorChoice::never;
    }

    /// What stands on the command line beside the options, as it stands there.
    const std::vector<std::string>& givenOperands() const { return operands; }

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
    bool takeWord(std::string word, std::vector<std::string>& options) const {
        const CLI::Option* option = app.get_option_no_throw(word);
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

    RecipeSource recipeSource(std::vector<RecipeStep> steps) const {
        const int count = (*recipe ? 1 : 0) + (*preset ? 1 : 0) + (steps.empty() ? 0 : 1);
        if (count == 0)
            throw UsageError("no recipe is given: one of --recipe, --preset and --action is needed");
        if (count > 1)
            throw UsageError("--recipe, --preset and --action exclude each other");
        if (*recipe)
            return RecipeAtPath{recipe->results().at(0)};
        if (*preset)
            return RecipeOfPreset{preset->results().at(0)};
        return steps;
    }

    std::string name;
    const std::string& helpText;
    bool helpWanted = false;
    CLI::Option* color = nullptr;
    CLI::Option* recipe = nullptr;
    CLI::Option* preset = nullptr;
    CLI::Option* action = nullptr;
    CLI::Option* parameter = nullptr;
    CLI::Option* setting = nullptr;
    CLI::Option* recursive = nullptr;
    CLI::Option* onConflict = nullptr;
    CLI::Option* store = nullptr;
    std::optional<SelectionParser> selection;
    std::vector<std::string> operands;
};

CommandLine parsePreview(std::vector<std::string> arguments) {
    PreviewOptions options;
    Parser parser("preview", help::preview);
    parser.addRunOptions();
    CLI::Option* format = parser.app.add_option("--format", options.format)->check(CLI::Range(0, 2));
    parser.app.add_flag("-j,--json", options.json)->excludes(format);
    CLI::Option* affected = parser.app.add_flag("--affected", options.affected);
    parser.app.add_flag("-a,--all", options.all)->excludes(affected);
    parser.app.add_flag("-c,--check", options.check);
    return parser.parse(std::move(arguments), [&] {
        options.color = parser.colorChoice();
        options.run = parser.runOptions();
        options.null = options.run.selection.null;
        options.isForPrograms = *format || options.json || options.null;
        if (options.json && options.null && !options.run.selection.filesFrom)
            throw UsageError("--json excludes --null");
        return options;
    });
}

CommandLine parseRename(std::vector<std::string> arguments) {
    RenameOptions options;
    Parser parser("rename", help::rename);
    parser.addRunOptions();
    parser.addRenameOptions(options);
    return parser.parse(std::move(arguments), [&] {
        options.run = parser.runOptions();
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
        options.rename.run = parser.runOptions(false);
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
    return parser.parse(std::move(arguments), [&] {
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
    parser.app.add_flag("-j,--json", options.json);
    return parser.parse(std::move(arguments), [&] {
        if (!parser.givenOperands().empty())
            throw UsageError("it takes no names");
        return options;
    });
}

} // namespace

CommandLine parseCommandLine(std::vector<std::string> arguments) {
    if (arguments.empty())
        return usageError("", "no command is given");
    const std::string command = std::move(arguments.front());
    arguments.erase(arguments.begin());
    if (command == "preview")
        return parsePreview(std::move(arguments));
    if (command == "rename")
        return parseRename(std::move(arguments));
    if (command == "edit")
        return parseEdit(std::move(arguments));
    if (command == "history")
        return parseHistory(std::move(arguments));
    if (command == "undo" || command == "redo")
        return parseTakeBack(std::move(arguments), command == "redo");
    if (command == "actions")
        return parseActions(std::move(arguments));
    if (command == "tags")
        return parseTags(std::move(arguments));
    if (command == "presets")
        return parsePresets(std::move(arguments));
    if (command == "--help" || command == "-h")
        return CommandLineEnd{0, help::overview};
    if (command == "--version")
        return CommandLineEnd{0, fmt::format("tvrn (Tavrin) {}\n", programVersion)};
    return usageError("", fmt::format("there is no command \"{}\"", command));
}

} // namespace tavrin
