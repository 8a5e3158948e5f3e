#pragma once

#include "actions/sequence/SortNumberBasedAction.h"

namespace tavrin {

/// An action that gives an item a roman numeral by its place in the run; none from 4001 on.
class RomanNumeralBasedAction : public SortNumberBasedAction {
  public:
    RomanNumeralBasedAction() { addParameter(numberParameter("padding", "Not used", 2, 1).hidden()); }
    [[nodiscard]] std::vector<std::u16string> firstValues() const override { return {}; }

  protected:
    [[nodiscard]] std::optional<std::u16string_view> textToPlace(const InputContext& input) {
        return getFormattedRomanNumeralString(input);
    }
};

} // namespace tavrin
