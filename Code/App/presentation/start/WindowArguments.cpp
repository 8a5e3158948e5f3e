#include "presentation/start/WindowArguments.h"

#include "platform/files/AbsolutePaths.h"
#include "support/application/Version.h"
#include "support/text/DisplayText.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

namespace tavrin {

namespace {

constexpr int badUsage = 2;

const char* const usage =
    "Usage: tavrin [PATH...]\n"
    "       tavrin --droplet DROPLET [--launcher=FILE] [PATH...]\n"
    "       tavrin --help | --version\n\n"
    "Opens the window with these files and folders in its list. Where it is open already, "
    "they are added\nthere. \"--\" ends the options. The command for the terminal is tvrn.\n"
    "A droplet renames these files and ends; without files it is opened for editing.\n";

/// Options of Qt that it also takes with two dashes.
constexpr std::array<std::string_view, 4> qtOptions{"--platform", "--style", "--session", "--platformtheme"};

bool isForQt(std::string_view argument) {
    argument = argument.substr(0, argument.find('='));
    return std::ranges::find(qtOptions, argument) != qtOptions.end();
}

WindowArguments::End unknownOption(const std::string& option) {
    return {badUsage, "tavrin: there is no option " + display::visible(option) + "\n" + usage};
}

} // namespace

std::variant<WindowArguments::End, WindowArguments> WindowArguments::take(int& count, char** arguments) {
    WindowArguments result;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        if (argument == "--help" || argument == "-h")
            return End{0, usage};
        if (argument == "--version")
            return End{0, std::string("tavrin (Tavrin) ") + programVersion + "\n"};
        if (argument == "--") {
            result.behindDashes.assign(arguments + i + 1, arguments + count);
            count = i;
            arguments[count] = nullptr;
        } else if (argument.starts_with("--") && !isForQt(argument)) {
            return unknownOption(argument);
        }
    }
    return result;
}

std::variant<WindowArguments::End, std::vector<std::string>> WindowArguments::paths(int count,
                                                                                    char** arguments) const {
    std::vector<std::string> given(arguments + 1, arguments + count);
    for (const std::string& path : given)
        if (path.size() > 1 && path.front() == '-')
            return unknownOption(path);
    given.insert(given.end(), behindDashes.begin(), behindDashes.end());
    return absolute(given);
}

std::vector<std::string> WindowArguments::absolute(const std::vector<std::string>& given) {
    std::vector<std::string> result;
    std::error_code error;
    const std::string folder = std::filesystem::current_path(error).string();
    for (const std::string& path : absolutePaths(given))
        // What leads nowhere is told in the window, under its full path.
        if (!path.empty())
            result.push_back(path.front() == '/' ? path : folder + "/" + path);
    return result;
}

} // namespace tavrin
