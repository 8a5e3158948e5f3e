#pragma once

#include "actions/BaseRenameAction.h"

#include <string>
#include <string_view>

namespace tavrin {

/// An action that puts the name of the folder which holds the item into the name.
class AddFolderNameAction : public BaseRenameAction {
  public:
    AddFolderNameAction();

    [[nodiscard]] std::string actionName() const override { return "abstractFolderNameAction"; }

  protected:
    /// The folder's name, "/" in the root of the disk, with the blanks that the parameters ask for; valid
    /// until the next call.
    [[nodiscard]] std::optional<std::u16string_view> textToPlace(const InputContext& input);

    /// Puts the blanks that the parameters ask for around a text.
    void addSpaces(std::u16string& text) const;

  private:
    std::int32_t paramLeadingSpace = 0;
    std::int32_t paramTrailingSpace = 0;
    std::u16string folder;
};

} // namespace tavrin
