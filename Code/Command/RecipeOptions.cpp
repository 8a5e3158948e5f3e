#include "RecipeOptions.h"

#include "ExitStatus.h"
#include "platform/files/FileSystem.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <limits>
#include <map>

namespace tavrin {

KeyAndValue keyAndValue(const std::string& option, const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        throw UsageError(fmt::format("{} {}: expected KEY=VALUE", option, text));
    return {text.substr(0, equals), text.substr(equals + 1)};
}

CLI::Option* addRepeatable(CLI::App& app, const std::string& name) {
    return app.add_option(name)
        ->expected(1, std::numeric_limits<int>::max())
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

RecipeParser::RecipeParser(CLI::App& parser)
    : app(parser), text(addRepeatable(app, "-e")), file(app.add_option("-f,--recipe")->expected(1)),
      preset(app.add_option("-p,--preset")->expected(1)), action(addRepeatable(app, "--action")),
      parameter(addRepeatable(app, "--set")) {}

std::vector<RecipeStep> RecipeParser::steps() const {
    std::vector<RecipeStep> given;
    std::map<const CLI::Option*, std::size_t> taken;
    for (const CLI::Option* option : app.parse_order()) {
        const auto next = [&] { return option->results().at(taken[option]++); };
        if (option == action) {
            given.push_back({next(), {}});
        } else if (option == parameter) {
            if (given.empty())
                throw UsageError(fmt::format("--set {}: there is no --action before it", next()));
            given.back().parameters.push_back(keyAndValue("--set", next()));
        }
    }
    return given;
}

std::optional<RecipeSource> RecipeParser::read() const {
    std::vector<RecipeStep> given = steps();
    if ((*text ? 1 : 0) + (*file ? 1 : 0) + (*preset ? 1 : 0) + (given.empty() ? 0 : 1) > 1)
        throw UsageError("-e, --recipe, --preset and --action exclude each other");
    if (*text)
        return RecipeInText{fmt::format("{}", fmt::join(text->results(), "\n"))};
    if (*file)
        return RecipeAtPath{file->results().at(0)};
    if (*preset)
        return RecipeOfPreset{preset->results().at(0)};
    if (given.empty())
        return std::nullopt;
    return given;
}

RecipeSource RecipeParser::readOrTake(std::vector<std::string>& operands) const {
    if (std::optional<RecipeSource> source = read())
        return std::move(*source);
    if (operands.empty())
        throw UsageError("no recipe is given: it comes before the paths, or by one of -e, --recipe, --preset "
                         "and --action");
    std::string recipe = std::move(operands.front());
    operands.erase(operands.begin());
    // Forgotten in front of "*", it is found out before a name is taken for it.
    if (!recipe.empty() && FileSystem::sharedInstance().exists(recipe))
        throw UsageError(fmt::format("\"{0}\" is a file here as well: write -e {0} for the recipe, ./{0} for "
                                     "the file",
                                     recipe));
    return RecipeInText{std::move(recipe)};
}

} // namespace tavrin
