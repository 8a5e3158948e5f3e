#pragma once

#include "support/values/PropertyValue.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class BaseRenameAction;

/// The categories of the menus, in their order; categoryLabel has their names.
enum class ActionCategory : std::uint8_t {
    replace,
    remove,
    text,
    move,
    letterCase,
    number,
    letters,
    romanNumerals,
    date,
    tags,
    imageSize,
    music,
    folderName,
    folderPath,
    listFile,
    lengthAndSystems,
};
inline constexpr std::size_t actionCategoryCount = 16;
[[nodiscard]] std::string_view categoryLabel(ActionCategory category);

/// Where an action puts its text.
enum class Place { wholeName, start, end, position, beforeText, afterText };

/// How recipes call an action: by a verb, together with a place where several share it.
struct RecipeVerb {
    std::string_view verb;
    Place place = Place::wholeName;
    char slash =
        0; ///< the letter of its sed-like form, if it has one: pattern and replacement come first then
};

/// The file of an example, for actions that look at more than a name. Empty members do not matter.
struct ExampleFile {
    std::string_view folder;   ///< the folder that the file is in, a path
    std::string_view modified; ///< when it was last changed, local time, as "2024-06-14 07:31:05"
    std::string_view sample;   ///< what it holds: the name of one of the sample files of the tests
    std::string_view note;     ///< says of a sample what an example needs, for the user
    std::u16string_view list;  ///< the lines of the list file that the parameter "listFilePath" is to name
};

/// What an action does, shown by a case: parameters beside the defaults, a name, and what becomes of it.
struct ActionExample {
    PropertyDictionary parameters;
    std::u16string before;
    std::u16string after;
    ExampleFile file = {};
};

/// One action of the catalogue. In the menu of its category it stands where its family, and it in its family,
/// stand in allActions(). All texts are constants of the program.
struct ActionEntry {
    std::string_view name;  ///< its identity in stored lists and commands, which never changes
    std::string_view label; ///< its name in the menus
    RecipeVerb recipe;
    ActionCategory category;
    std::unique_ptr<BaseRenameAction> (*create)(); ///< see newAction; use make()
    std::vector<ActionExample> examples;           ///< cases for the user, run as tests too
    /// A sentence for the user; empty where the parameters speak for themselves.
    std::u16string_view explanation = {};

    /// A new action of that name with its default parameters.
    [[nodiscard]] std::unique_ptr<BaseRenameAction> make() const;
};

/// What an entry creates: an object of a class, made with these arguments.
template <typename Action, auto... arguments> std::unique_ptr<BaseRenameAction> newAction() {
    return std::make_unique<Action>(arguments...);
}

/// The families. A new one takes a line here and one in ActionFamilies.cpp, a new action of a family none.
[[nodiscard]] std::vector<ActionEntry> replaceTextActions();
[[nodiscard]] std::vector<ActionEntry> replaceCharactersActions();
[[nodiscard]] std::vector<ActionEntry> replaceAtEndsActions();
[[nodiscard]] std::vector<ActionEntry> regularExpressionActions();
[[nodiscard]] std::vector<ActionEntry> removeAtEndsActions();
[[nodiscard]] std::vector<ActionEntry> removeAnywhereActions();
[[nodiscard]] std::vector<ActionEntry> insertTextActions();
[[nodiscard]] std::vector<ActionEntry> moveTextActions();
[[nodiscard]] std::vector<ActionEntry> caseActions();
[[nodiscard]] std::vector<ActionEntry> camelCaseActions();
[[nodiscard]] std::vector<ActionEntry> numberActions();
[[nodiscard]] std::vector<ActionEntry> numberBlockActions();
[[nodiscard]] std::vector<ActionEntry> characterSetActions();
[[nodiscard]] std::vector<ActionEntry> alphabeticalSequenceActions();
[[nodiscard]] std::vector<ActionEntry> dateActions();
[[nodiscard]] std::vector<ActionEntry> tagActions();
[[nodiscard]] std::vector<ActionEntry> dimensionsActions();
[[nodiscard]] std::vector<ActionEntry> mp3Actions();
[[nodiscard]] std::vector<ActionEntry> folderNameActions();
[[nodiscard]] std::vector<ActionEntry> pathComponentsActions();
[[nodiscard]] std::vector<ActionEntry> renameFromListActions();
[[nodiscard]] std::vector<ActionEntry> truncateActions();
[[nodiscard]] std::vector<ActionEntry> convertToNTFSActions();

/// All actions that exist, family by family; made at the first call. Any thread.
[[nodiscard]] const std::vector<ActionEntry>& allActions();

} // namespace tavrin
