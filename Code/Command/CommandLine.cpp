#include "CommandLine.h"

#include "CommandParser.h"
#include "ExitStatus.h"
#include "HelpTexts.h"
#include "documents/Settings.h"
#include "documents/recipe/RecipeText.h"
#include "documents/recipe/RecipeWords.h"
#include "support/application/Version.h"

#include <fmt/format.h>

#include <functional>
#include <iterator>
#include <map>

namespace tavrin {

namespace {

std::string numberOfConflictRule(std::string_view rule) {
    return rule == "skip" ? "1" : rule == "stop" ? "2" : "0";
}

/// What preview, rename and edit share.
class RunParser {
  public:
    explicit RunParser(CommandParser& commandParser)
        : parser(commandParser), recipe(parser.app), setting(addRepeatable(parser.app, "--setting")),
          recursive(parser.app.add_flag("-r,--recursive")),
          onConflict(
              addRepeatable(parser.app, "--on-conflict")->check(CLI::IsMember({"number", "skip", "stop"}))),
          store(parser.app.add_option("--store")->expected(1)->check(CLI::IsMember({"memory", "file"}))),
          selection(parser.app) {}

    /// Where the recipe comes from: an option alone, or an option or the first operand.
    enum class RecipeFrom { option, optionOrOperand };

    /// Throws UsageError.
    [[nodiscard]] RunOptions read(RecipeFrom from = RecipeFrom::optionOrOperand) const {
        RunOptions options;
        std::vector<std::string>& operands = parser.givenOperands();
        std::map<const CLI::Option*, std::size_t> taken;
        for (const CLI::Option* option : parser.app.parse_order()) {
            const auto next = [&] { return option->results().at(taken[option]++); };
            if (option == setting)
                options.settings.push_back(keyAndValue("--setting", next()));
            else if (option == recursive)
                options.settings.emplace_back(settingKey::processSubfolders, "1");
            else if (option == onConflict)
                options.settings.emplace_back(settingKey::onConflict, numberOfConflictRule(next()));
        }
        options.recipe = from == RecipeFrom::option ? recipe.read() : recipe.readOrTake(operands);
        options.storeInFile = *store && store->results().at(0) == "file";
        options.selection = selection.read();
        if (operands.empty() && !options.selection.filesFrom)
            throw UsageError("no path is given");
        options.paths = std::move(operands);
        return options;
    }

  private:
    CommandParser& parser;
    RecipeParser recipe;
    CLI::Option* setting;
    CLI::Option* recursive;
    CLI::Option* onConflict;
    CLI::Option* store;
    SelectionParser selection;
};

/// Adds what rename and edit share.
void addRenameOptions(CLI::App& app, RenameOptions& options) {
    app.add_flag("-i,--interactive", options.interactive);
    CLI::Option* quiet = app.add_flag("-q,--quiet", options.quiet);
    app.add_flag("-v,--verbose", options.verbose)->excludes(quiet);
    CLI::Option* none = app.add_flag("--no-history", options.noHistory);
    app.add_flag("--require-history", options.requireHistory)->excludes(none);
}

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
    CommandParser parser("preview", help::preview);
    const RunParser run(parser);
    const PreviewParser preview(parser.app);
    return parser.parse(std::move(arguments), [&] { return preview.read(run.read(), parser.colorChoice()); });
}

/// Of `rename`, and of a line without a command, which previews unless it is told to rename. `-n` makes a
/// preview of either, whatever else is said.
CommandLine parseRename(std::vector<std::string> arguments, bool hasCommand) {
    RenameOptions options;
    bool executes = hasCommand;
    bool isDryRun = false;
    CommandParser parser(hasCommand ? "rename" : "", hasCommand ? help::rename : help::overview);
    const RunParser run(parser);
    addRenameOptions(parser.app, options);
    const PreviewParser preview(parser.app);
    parser.app.add_flag("-x,--execute", executes);
    parser.app.add_flag("-n,--dry-run", isDryRun);
    return parser.parse(std::move(arguments), [&]() -> CommandLine {
        if (!executes || isDryRun)
            return preview.read(run.read(), parser.colorChoice());
        preview.refuse();
        options.run = run.read();
        return options;
    });
}

CommandLine parseRecipe(std::vector<std::string> arguments) {
    using Form = RecipeTextOptions::Form;
    RecipeTextOptions options;
    CommandParser parser("recipe", help::recipe);
    const RecipeParser recipe(parser.app);
    CLI::Option* lines = parser.app.add_flag("--lines");
    CLI::Option* list = parser.app.add_flag("--plist")->excludes(lines);
    CLI::Option* json = parser.app.add_flag("-j,--json")->excludes(lines)->excludes(list);
    CLI::Option* complete = parser.app.add_option("--complete")->expected(1);
    return parser.parse(std::move(arguments), [&] {
        options.form = *lines ? Form::lines : *list ? Form::propertyList : *json ? Form::json : Form::line;
        if (*complete)
            options.complete = complete->results().at(0);
        else
            options.recipe = recipe.readOrTake(parser.givenOperands());
        if (!parser.givenOperands().empty())
            throw UsageError("it takes one recipe and no paths");
        return options;
    });
}

constexpr int stopRule = static_cast<int>(Settings::OnConflict::stop);

CommandLine parseEdit(std::vector<std::string> arguments) {
    EditOptions options;
    CommandParser parser("edit", help::edit);
    const RunParser run(parser);
    addRenameOptions(parser.app, options.rename);
    parser.app.add_flag("-n,--dry-run", options.dryRun);
    return parser.parse(std::move(arguments), [&] {
        options.rename.run = run.read(RunParser::RecipeFrom::option);
        for (const auto& [key, value] : options.rename.run.settings)
            if (key == settingKey::onConflict && value != std::to_string(stopRule))
                throw UsageError("names that you edit are never numbered or left out: the rule is stop");
        options.color = parser.colorChoice();
        return options;
    });
}

CommandLine parseHistory(std::vector<std::string> arguments) {
    HistoryOptions options;
    CommandParser parser("history", help::history);
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
    CommandParser parser(isRedo ? "redo" : "undo", isRedo ? help::redo : help::undo);
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
    CommandParser parser("actions", help::actions);
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
        options.name = parser.onlyOperand("action");
        return options;
    });
}

CommandLine parseTags(std::vector<std::string> arguments) {
    TagsOptions options;
    CommandParser parser("tags", help::tags);
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
    CommandParser parser("presets", help::presets);
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
        return command->second({std::make_move_iterator(std::next(arguments.begin())),
                                std::make_move_iterator(arguments.end())});
    if (first == "help" && arguments.size() == 2)
        if (const auto command = commands.find(arguments[1]); command != commands.end())
            return command->second({"--help"});
    if (first == "--help" || first == "-h" || (first == "help" && arguments.size() == 1))
        return CommandLineEnd{0, help::overview};
    if (first == "--version" || first == "-V")
        return CommandLineEnd{0, fmt::format("tvrn (Tavrin) {}\nrecipe language {}\n", programVersion,
                                             RecipeText::languageVersion)};
    if (arguments.size() == 1 && !first.starts_with("-")) { // there are no paths
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
