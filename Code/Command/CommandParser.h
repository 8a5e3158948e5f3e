#pragma once

#include "CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The end of a line that is not as it should be; `command` is empty for a line without one.
[[nodiscard]] CommandLineEnd usageError(std::string_view command, std::string_view what);

/// The parser of one subcommand. Each is a parser of its own, so that no path is taken for a subcommand.
class CommandParser {
  public:
    CommandParser(std::string command, const std::string& help);
    CommandParser(const CommandParser&) = delete;
    CommandParser& operator=(const CommandParser&) = delete;

    /// Takes further options before `parse`.
    CLI::App app;

    /// Parses, and makes the result unless help is wanted or something is wrong. `result` may throw
    /// UsageError.
    [[nodiscard]] CommandLine parse(std::vector<std::string> arguments,
                                    const std::function<CommandLine()>& result);

    [[nodiscard]] ColorChoice colorChoice() const;
    /// What stands on the command line beside the options, as it stands there.
    [[nodiscard]] std::vector<std::string>& givenOperands() { return operands; }
    /// Takes away those that stand behind an option that is given. Throws UsageError.
    [[nodiscard]] std::vector<std::string> takeOperandsBehind(const std::string& option);
    /// The one that there may be; empty without it. Throws UsageError.
    [[nodiscard]] std::string onlyOperand(std::string_view what) const;

  private:
    std::vector<std::string> takeOperands(std::vector<std::string> arguments);
    bool takeWord(std::string word, std::vector<std::string>& options);
    bool takeLetters(const std::string& given, std::vector<std::string>& options) const;

    std::string name;
    const std::string& helpText;
    bool helpWanted = false;
    CLI::Option* color;
    std::vector<std::string> operands;
    std::map<std::string, std::size_t> operandsInFront; ///< by the option in long form
};

} // namespace tavrin
