#include "CommandParser.h"

#include "ExitStatus.h"
#include "documents/recipe/RecipeWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace tavrin {

namespace {

/// The option that may have been meant by one that there is not.
std::string nearestOption(const CLI::App& app, std::string_view given) {
    std::vector<std::string> known;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames())
            known.push_back("--" + name);
    const std::vector<std::string_view> all(known.begin(), known.end());
    const std::string_view nearest = given.starts_with("--") ? nearestWord(given, all) : std::string_view();
    return nearest.empty() || nearest == given ? std::string() : fmt::format("; did you mean {}?", nearest);
}

/// The library's message, but where the number of values is wrong: there it names their type, which ours have
/// not.
std::string sentenceOf(const CLI::ParseError& error, const CLI::App& app) {
    const std::string_view message = error.what();
    const std::string_view option = message.substr(0, message.find(':'));
    if (message.ends_with(" missing"))
        return fmt::format("{} needs a value", option);
    if (message.find(" required but received ") != message.npos)
        return fmt::format("{} is given more than once", option);
    if (message.starts_with("The following argument was not expected: "))
        return fmt::format("{}{}", message, nearestOption(app, message.substr(message.find(": ") + 2)));
    return std::string(message);
}

bool takesValue(const CLI::Option* option) { return option && option->get_items_expected_max() > 0; }

} // namespace

CommandLineEnd usageError(std::string_view command, std::string_view what) {
    const std::string name = command.empty() ? "tvrn" : fmt::format("tvrn {}", command);
    return {static_cast<int>(ExitStatus::badUsage), fmt::format("{}: {}", name, what),
            fmt::format("Try \"{} --help\".", name)};
}

CommandParser::CommandParser(std::string command, const std::string& help)
    : name(std::move(command)), helpText(help),
      color(app.add_option("--color")->expected(1)->check(CLI::IsMember({"auto", "always", "never"}))) {
    app.allow_windows_style_options(false);
    app.set_help_flag();
    app.add_flag("-h,--help", helpWanted);
}

CommandLine CommandParser::parse(std::vector<std::string> arguments,
                                 const std::function<CommandLine()>& result) {
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
        return usageError(name, sentenceOf(error, app));
    } catch (const UsageError& error) {
        return usageError(name, error.what());
    }
}

ColorChoice CommandParser::colorChoice() const {
    if (!*color || color->results().at(0) == "auto")
        return ColorChoice::automatic;
    return color->results().at(0) == "always" ? ColorChoice::always : ColorChoice::never;
}

std::vector<std::string> CommandParser::takeOperandsBehind(const std::string& option) {
    const auto inFront = operandsInFront.find(option);
    if (inFront == operandsInFront.end()) // it has a value behind an equals sign
        throw UsageError(fmt::format("{} takes what stands behind it, without \"=\"", option));
    const auto first = operands.begin() + static_cast<std::ptrdiff_t>(inFront->second);
    std::vector<std::string> taken(std::make_move_iterator(first), std::make_move_iterator(operands.end()));
    operands.erase(first, operands.end());
    return taken;
}

std::string CommandParser::onlyOperand(std::string_view what) const {
    if (operands.size() > 1)
        throw UsageError(fmt::format("more than one {} is given", what));
    if (!operands.empty() && operands.front().empty())
        throw UsageError(fmt::format("the name of the {} is empty", what));
    return operands.empty() ? std::string() : operands.front();
}

/// Keeps the operands, and answers the options with their values. The library must not see operands: it reads
/// a meaning into brackets, numbers and the like.
std::vector<std::string> CommandParser::takeOperands(std::vector<std::string> arguments) {
    std::vector<std::string> options;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "--") {
            operands.insert(operands.end(), std::make_move_iterator(std::next(argument)),
                            std::make_move_iterator(arguments.end()));
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

/// Whether the next argument is the option's value; so too in the next.
bool CommandParser::takeWord(std::string word, std::vector<std::string>& options) {
    const CLI::Option* option = app.get_option_no_throw(word);
    operandsInFront.emplace(word, operands.size());
    options.push_back(std::move(word));
    return takesValue(option);
}

/// Letters behind one hyphen; what is behind a letter that takes a value is that value.
bool CommandParser::takeLetters(const std::string& given, std::vector<std::string>& options) const {
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

} // namespace tavrin
