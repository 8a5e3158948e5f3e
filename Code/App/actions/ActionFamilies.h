#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace tavrin {

class BaseRenameAction;

/// How an action of the catalogue is made. The object has its default parameters.
struct ActionEntry {
    std::string_view name;
    std::unique_ptr<BaseRenameAction> (*make)();
};

/// The entry of a class that tells its name as a constant.
template <typename Action> constexpr ActionEntry entryFor() {
    return {Action::name, [] { return std::unique_ptr<BaseRenameAction>(std::make_unique<Action>()); }};
}

/// The families, one line each in ActionFamilies.cpp.
[[nodiscard]] std::span<const ActionEntry> replaceTextActions();
[[nodiscard]] std::span<const ActionEntry> replaceCharactersActions();
[[nodiscard]] std::span<const ActionEntry> replaceAtEndsActions();
[[nodiscard]] std::span<const ActionEntry> removeAtEndsActions();
[[nodiscard]] std::span<const ActionEntry> insertTextActions();
[[nodiscard]] std::span<const ActionEntry> moveTextActions();
[[nodiscard]] std::span<const ActionEntry> caseActions();
[[nodiscard]] std::span<const ActionEntry> properCaseActions();
[[nodiscard]] std::span<const ActionEntry> camelCaseActions();
[[nodiscard]] std::span<const ActionEntry> numberActions();
[[nodiscard]] std::span<const ActionEntry> removeAnywhereActions();
[[nodiscard]] std::span<const ActionEntry> truncateActions();
[[nodiscard]] std::span<const ActionEntry> convertToNTFSActions();
[[nodiscard]] std::span<const ActionEntry> characterSetActions();
[[nodiscard]] std::span<const ActionEntry> numberBlockActions();
[[nodiscard]] std::span<const ActionEntry> romanNumeralActions();
[[nodiscard]] std::span<const ActionEntry> alphabeticalSequenceActions();
[[nodiscard]] std::span<const ActionEntry> dateActions();
[[nodiscard]] std::span<const ActionEntry> regularExpressionActions();
[[nodiscard]] std::span<const ActionEntry> renameFromListActions();
[[nodiscard]] std::span<const ActionEntry> folderNameActions();
[[nodiscard]] std::span<const ActionEntry> pathComponentsActions();
[[nodiscard]] std::span<const ActionEntry> tagActions();
[[nodiscard]] std::span<const ActionEntry> mp3Actions();
[[nodiscard]] std::span<const ActionEntry> dimensionsActions();

/// All actions that exist, family by family.
[[nodiscard]] std::vector<ActionEntry> allActions();

} // namespace tavrin
