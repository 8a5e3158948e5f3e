#include "actions/sequence/SortNumberBasedAction.h"

#include "actions/PaddedNumber.h"

#include <array>
#include <utility>

namespace tavrin {

namespace {

constexpr std::int32_t largestRomanNumeral = 4000;

constexpr std::array<std::pair<std::int32_t, std::u16string_view>, 13> romanNumerals{{
    {1000, u"M"},
    {900, u"CM"},
    {500, u"D"},
    {400, u"CD"},
    {100, u"C"},
    {90, u"XC"},
    {50, u"L"},
    {40, u"XL"},
    {10, u"X"},
    {9, u"IX"},
    {5, u"V"},
    {4, u"IV"},
    {1, u"I"},
}};

} // namespace

SortNumberBasedAction::SortNumberBasedAction() {
    addParameter(numberParameter("startValue", "Start at", 1, 1), paramStartValue);
    addParameter(numberParameter("stepValue", "Step", 1, 1), paramStepValue);
    addParameter(numberParameter("padding", "Digits", 2, 1).between(0, 20), paramPadding);
}

std::optional<std::u16string> SortNumberBasedAction::romanNumeral(std::int32_t number) {
    if (number > largestRomanNumeral)
        return std::nullopt;
    std::u16string numeral;
    for (const auto& [value, text] : romanNumerals)
        for (; number >= value; number -= value)
            numeral += text;
    return numeral;
}

std::vector<std::u16string> SortNumberBasedAction::firstValues() const {
    std::vector<std::u16string> values(3);
    for (std::uint32_t i = 0; i < values.size(); ++i)
        appendPaddedNumber(valueAfter(i), paramPadding, values[i]);
    return values;
}

std::int32_t SortNumberBasedAction::valueAfter(std::uint32_t steps) const {
    return static_cast<std::int32_t>(steps * static_cast<std::uint32_t>(paramStepValue) +
                                     static_cast<std::uint32_t>(paramStartValue));
}

std::u16string_view SortNumberBasedAction::getFormattedNumberString(const InputContext& input) {
    formatted.clear();
    appendPaddedNumber(value(input), paramPadding, formatted);
    return formatted;
}

std::optional<std::u16string_view>
SortNumberBasedAction::getFormattedRomanNumeralString(const InputContext& input) {
    auto numeral = romanNumeral(value(input));
    if (!numeral)
        return std::nullopt;
    formatted = std::move(*numeral);
    return formatted;
}

} // namespace tavrin
