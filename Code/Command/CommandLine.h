#pragma once

#include "RecipeOptions.h"
#include "SelectionOptions.h"

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace tavrin {

/// When colours are used: on a terminal that knows them, or whatever stands there.
enum class ColorChoice { automatic, always, never };

/// What preview and rename share.
struct RunOptions {
    std::optional<RecipeSource> recipe; ///< absent: names stay as they are
    std::vector<KeyAndValue> settings;  ///< in the order given, `--recursive` and `--on-conflict` among them
    bool storeInFile = false;
    SelectionOptions selection;
    std::vector<std::string> paths;
};

struct PreviewOptions {
    RunOptions run;
    int format = 0;
    bool isForPrograms = false; ///< the form of the rows is asked for
    bool json = false;
    bool all = false;
    ColorChoice color = ColorChoice::automatic;
    bool affected = false;
    bool null = false;
    bool check = false; ///< problems count as failures
};

struct RenameOptions {
    RunOptions run;
    bool interactive = false;
    bool quiet = false;
    bool verbose = false;
    bool noHistory = false;
    bool requireHistory = false;
};

/// Of edit.
struct EditOptions {
    RenameOptions rename;
    bool dryRun = false;
    ColorChoice color = ColorChoice::automatic;
};

struct HistoryOptions {
    bool json = false;
    bool clear = false;
    std::string run;    ///< empty: all
    std::string forget; ///< empty: none
};

/// Of undo and redo.
struct TakeBackOptions {
    bool isRedo = false;
    std::string run; ///< empty: the one whose turn it is
    bool preview = false;
    bool json = false;
    bool replaced = false;
    bool interactive = false;
    bool quiet = false;
    bool verbose = false;
};

/// Of recipe.
struct RecipeTextOptions {
    enum class Form { line, lines, propertyList, json };
    std::optional<RecipeSource> recipe; ///< absent where something is to be completed
    Form form = Form::line;
    std::optional<std::string> complete; ///< a text whose last token is to be completed
};

struct ActionsOptions {
    bool json = false;
    std::string name;                    ///< empty: all
    std::vector<std::string> triedNames; ///< what their examples make of these is asked; empty: it is not
};

struct TagsOptions {
    bool json = false;
    SelectionOptions selection; ///< only where more paths come from
    std::vector<std::string> paths;
};

struct PresetsOptions {
    bool json = false;
    bool namesOnly = false; ///< those that fit on one line
};

/// There is nothing to run. Where the status is 0 there is a text to show on standard output; else a line for
/// standard error that may hold what the user typed, and one of ours behind it.
struct CommandLineEnd {
    int status = 0;
    std::string text;
    std::string hint = {};
};

using CommandLine =
    std::variant<CommandLineEnd, PreviewOptions, RenameOptions, EditOptions, HistoryOptions, TakeBackOptions,
                 RecipeTextOptions, ActionsOptions, TagsOptions, PresetsOptions>;

/// Parses what follows the program's name.
[[nodiscard]] CommandLine parseCommandLine(std::vector<std::string> arguments);

} // namespace tavrin
