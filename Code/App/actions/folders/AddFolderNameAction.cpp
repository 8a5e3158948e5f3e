#include "actions/folders/AddFolderNameAction.h"

#include "actions/folders/PathComponents.h"
#include "support/text/Text.h"

namespace tavrin {

AddFolderNameAction::AddFolderNameAction() {
    addParameter(checkboxParameter("leadingSpace", "Space in front", 0, 1), paramLeadingSpace);
    addParameter(checkboxParameter("trailingSpace", "Space behind", 0, 1), paramTrailingSpace);
}

void AddFolderNameAction::addSpaces(std::u16string& text) const {
    if (paramLeadingSpace == 1)
        text.insert(text.begin(), u' ');
    if (paramTrailingSpace == 1)
        text += u' ';
}

std::optional<std::u16string_view> AddFolderNameAction::textToPlace(const InputContext& input) {
    const std::string path = input.inputPath();
    PathComponents components(path);
    const auto item = components.previous();
    const auto holder = item ? components.previous() : std::nullopt;
    text::fromBytes(holder.value_or(std::string_view()), folder);
    addSpaces(folder);
    text::replaceUnit(folder, u':', u'/');
    return folder;
}

} // namespace tavrin
