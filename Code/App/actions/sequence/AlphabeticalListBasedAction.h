#pragma once

#include "actions/SortBasedAction.h"

#include <string>
#include <string_view>

namespace tavrin {

/// An action that gives an item letters by its place in the run: numbers with base 26 whose digit zero is
/// "A", so that "BA" follows "Z". The arithmetic wraps round at 64 bits.
class AlphabeticalListBasedAction : public SortBasedAction {
  public:
    AlphabeticalListBasedAction();

    [[nodiscard]] bool hasLongParameterList() const override { return true; }
    [[nodiscard]] std::vector<std::u16string> firstValues() const override;
    /// A start value comes back in its normal form: capital letters, of the first six code units, without
    /// leading "A"s.
    [[nodiscard]] PropertyValue validatedValue(const PropertyValue& value,
                                               std::string_view key) const override;

    /// Small letters count as capitals, other characters as "A" or "Z"; an empty text is 0.
    [[nodiscard]] static std::int64_t uAlphaToNum(std::u16string_view letters);
    /// "A" for zero and negative values.
    [[nodiscard]] static std::u16string uNumToAlpha(std::int64_t value);

  protected:
    void prepareParameters() override;

    /// The letters of the item with "A"s on the left up to the padding, valid until the next call.
    [[nodiscard]] std::u16string_view getFormattedAlphabeticalString(const InputContext& input);

    /// What the members of the family place.
    [[nodiscard]] std::optional<std::u16string_view> textToPlace(const InputContext& input) {
        return getFormattedAlphabeticalString(input);
    }

  private:
    /// Puts in the letters of the item that comes after so many others.
    void setLettersAfter(std::int64_t steps, std::u16string& letters) const;
    /// Checks the start value before it is stored.
    [[nodiscard]] static std::u16string validateStartValue(std::u16string_view proposed);

    std::u16string paramStartValue;
    std::int32_t paramStepValue = 0;
    std::int32_t paramPadding = 0;
    std::int64_t startNumber = 0; ///< what `paramStartValue` stands for
    std::u16string formatted;
};

} // namespace tavrin
