#include "actions/ActionFamilies.h"

#include "actions/BaseRenameAction.h"

#include <array>
#include <iterator>

namespace tavrin {

namespace {

constexpr std::array<std::string_view, actionCategoryCount> categoryLabels{
    "Replace",          "Remove",  "Text",           "Move",        "Case",
    "Number",           "Letters", "Roman numerals", "Date",        "Photo & file tags",
    "Image size",       "Music",   "Folder name",    "Folder path", "List file",
    "Length & systems",
};

std::vector<ActionEntry> collectActions() {
    std::vector<ActionEntry> all;
    for (auto* const family : {
             replaceTextActions,    replaceCharactersActions,
             replaceAtEndsActions,  regularExpressionActions,
             removeAtEndsActions,   removeAnywhereActions,
             insertTextActions,     moveTextActions,
             caseActions,           camelCaseActions,
             numberActions,         numberBlockActions,
             characterSetActions,   alphabeticalSequenceActions,
             dateActions,           tagActions,
             dimensionsActions,     mp3Actions,
             folderNameActions,     pathComponentsActions,
             renameFromListActions, truncateActions,
             convertToNTFSActions,
         }) {
        auto entries = family();
        std::move(entries.begin(), entries.end(), std::back_inserter(all));
    }
    return all;
}

} // namespace

std::string_view categoryLabel(ActionCategory category) {
    return categoryLabels.at(static_cast<std::size_t>(category));
}

std::unique_ptr<BaseRenameAction> ActionEntry::make() const {
    auto action = create();
    action->introduce(name, explanation);
    return action;
}

const std::vector<ActionEntry>& allActions() {
    static const std::vector<ActionEntry> all = collectActions();
    return all;
}

} // namespace tavrin
