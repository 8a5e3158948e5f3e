#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace tavrin {

using KeyAndValue = std::pair<std::string, std::string>;

/// What a recipe is made from. Texts are bytes as the user typed them.
struct RecipeInText {
    std::string text;
};
struct RecipeAtPath {
    std::string path; ///< "-" for standard input
};
struct RecipeOfPreset {
    std::string name;
};
struct RecipeStep {
    std::string action;
    std::vector<KeyAndValue> parameters; ///< in the order given
};
using RecipeSource = std::variant<RecipeInText, RecipeAtPath, RecipeOfPreset, std::vector<RecipeStep>>;

/// The two sides of the first "=". Throws UsageError.
[[nodiscard]] KeyAndValue keyAndValue(const std::string& option, const std::string& text);

/// An option that may be given any number of times, each time with one value. Its values are to be read back
/// raw: the library's conversions give brackets in a value a meaning of their own.
CLI::Option* addRepeatable(CLI::App& app, const std::string& name);

/// The options that tell the recipe. All throw UsageError.
class RecipeParser {
  public:
    explicit RecipeParser(CLI::App& app);
    /// What they say; absent without any. They exclude each other.
    [[nodiscard]] std::optional<RecipeSource> read() const;
    /// What they say, or else the first operand, which is taken away.
    [[nodiscard]] RecipeSource readOrTake(std::vector<std::string>& operands) const;

  private:
    [[nodiscard]] std::vector<RecipeStep> steps() const;

    CLI::App& app;
    CLI::Option* text;
    CLI::Option* file;
    CLI::Option* preset;
    CLI::Option* action;
    CLI::Option* parameter;
};

} // namespace tavrin
