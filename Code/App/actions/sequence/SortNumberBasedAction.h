#pragma once

#include "actions/SortBasedAction.h"

namespace tavrin {

/// An action that gives an item a number by its place in the run. The arithmetic wraps round at 32 bits.
class SortNumberBasedAction : public SortBasedAction {
  public:
    SortNumberBasedAction();

    [[nodiscard]] bool hasLongParameterList() const override { return true; }

    /// Absent from 4001 on; empty for zero and negative numbers.
    [[nodiscard]] static std::optional<std::u16string> romanNumeral(std::int32_t number);

  protected:
    void prepareParameters() override;
    /// Appends the number alone; members of the family place it.
    void processName(std::u16string_view fragment, const InputContext& input, OutputContext& output,
                     std::u16string& result) override;

    [[nodiscard]] std::int32_t value(const InputContext& input) const;
    /// Zeros on the left up to the padding, the sign within it; blanks on the right for a negative padding.
    void appendFormattedNumberString(const InputContext& input, std::u16string& result) const;

  private:
    std::int32_t paramStartValue = 1;
    std::int32_t paramStepValue = 1;
    std::int32_t paramPadding = 1;
};

} // namespace tavrin
