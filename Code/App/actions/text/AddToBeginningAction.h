#pragma once

#include "actions/BaseRenameAction.h"

namespace tavrin {

/// Puts a text in front of the fragment.
class AddToBeginningAction final : public BaseRenameAction {
  public:
    static constexpr const char* name = "Add to front";

    AddToBeginningAction();
    [[nodiscard]] std::string actionName() const override { return name; }
    [[nodiscard]] std::vector<ActionExample> examples() const override;

  protected:
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override;

  private:
    std::u16string paramString;
};

} // namespace tavrin
