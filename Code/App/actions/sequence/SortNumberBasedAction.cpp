#include "actions/sequence/SortNumberBasedAction.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace tavrin {

namespace {

constexpr std::int32_t widest = 1024;
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
    addParameter(numberParameter("padding", "Digits", 2, 1), paramPadding);
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

void SortNumberBasedAction::prepareParameters() {
    SortBasedAction::prepareParameters();
    paramPadding = std::clamp(paramPadding, -widest, widest);
}

std::int32_t SortNumberBasedAction::value(const InputContext& input) const {
    const auto steps = static_cast<std::uint32_t>(getSortIndex(input)) - 1U;
    return static_cast<std::int32_t>(steps * static_cast<std::uint32_t>(paramStepValue) +
                                     static_cast<std::uint32_t>(paramStartValue));
}

void SortNumberBasedAction::appendFormattedNumberString(const InputContext& input,
                                                        std::u16string& result) const {
    std::array<char, 16> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value(input)).ptr;
    const char* begin = digits.data();
    const auto length = end - begin;
    if (*begin == '-' && paramPadding >= 0)
        result += static_cast<char16_t>(*begin++);
    if (paramPadding > length)
        result.append(static_cast<std::size_t>(paramPadding - length), u'0');
    result.append(begin, end);
    if (-paramPadding > length)
        result.append(static_cast<std::size_t>(-paramPadding - length), u' ');
}

void SortNumberBasedAction::processName(std::u16string_view, const InputContext& input, OutputContext&,
                                        std::u16string& result) {
    appendFormattedNumberString(input, result);
}

} // namespace tavrin
