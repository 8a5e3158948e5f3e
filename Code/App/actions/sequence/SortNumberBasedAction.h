#pragma once

#include "actions/SortBasedAction.h"

#include <string>
#include <string_view>

namespace tavrin {

/// An action that gives an item a number by its place in the run. The arithmetic wraps round at 32 bits.
class SortNumberBasedAction : public SortBasedAction {
  public:
    SortNumberBasedAction();

    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] std::vector<std::u16string> firstValues() const override;

    /// Absent from 4001 on; empty for zero and negative numbers.
    [[nodiscard]] static std::optional<std::u16string> romanNumeral(std::int32_t number);

  protected:
    /// The texts for the item, valid until the next call. The number has zeros on the left up to the padding,
    /// the sign within it, or blanks on the right for a negative padding.
    [[nodiscard]] std::u16string_view getFormattedNumberString(const InputContext& input);
    [[nodiscard]] std::optional<std::u16string_view>
    getFormattedRomanNumeralString(const InputContext& input);

    /// What the members of the family place.
    [[nodiscard]] std::optional<std::u16string_view> textToPlace(const InputContext& input) {
        return getFormattedNumberString(input);
    }

  private:
    /// The number of the item that comes after so many others.
    [[nodiscard]] std::int32_t valueAfter(std::uint32_t steps) const;
    [[nodiscard]] std::int32_t value(const InputContext& input) const {
        return valueAfter(static_cast<std::uint32_t>(getSortIndex(input)) - 1U);
    }

    std::int32_t paramStartValue = 1;
    std::int32_t paramStepValue = 1;
    std::int32_t paramPadding = 1;
    std::u16string formatted;
};

} // namespace tavrin
