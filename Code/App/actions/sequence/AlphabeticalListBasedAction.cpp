#include "actions/sequence/AlphabeticalListBasedAction.h"

#include "support/text/Text.h"

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::int64_t base = 26;
constexpr std::int32_t widest = 1024;
constexpr std::size_t longestStartValue = 6;

/// Appends the digits, the last first.
void appendReversed(std::int64_t value, std::u16string& letters) {
    do {
        letters += static_cast<char16_t>(u'A' + value % base);
        value /= base;
    } while (value > 0);
}

} // namespace

AlphabeticalListBasedAction::AlphabeticalListBasedAction() {
    addParameter(textParameter("startValue", "Start at", u"A"), paramStartValue);
    addParameter(numberParameter("stepValue", "Step", 1, 0), paramStepValue);
    addParameter(numberParameter("padding", "Letters", 1, 0).between(0, 20), paramPadding);
}

std::int64_t AlphabeticalListBasedAction::uAlphaToNum(std::u16string_view letters) {
    std::uint64_t value = 0;
    for (const char16_t unit : text::uppercased(letters))
        value = value * base + static_cast<std::uint64_t>(std::clamp(unit - u'A', 0, 25));
    return static_cast<std::int64_t>(value);
}

std::u16string AlphabeticalListBasedAction::uNumToAlpha(std::int64_t value) {
    std::u16string letters;
    appendReversed(std::max<std::int64_t>(value, 0), letters);
    std::reverse(letters.begin(), letters.end());
    return letters;
}

std::u16string AlphabeticalListBasedAction::validateStartValue(std::u16string_view proposed) {
    return uNumToAlpha(uAlphaToNum(text::uppercased(proposed).substr(0, longestStartValue)));
}

PropertyValue AlphabeticalListBasedAction::validatedValue(const PropertyValue& value,
                                                          std::string_view key) const {
    if (key == "startValue")
        return validateStartValue(textValue(value));
    return SortBasedAction::validatedValue(value, key);
}

void AlphabeticalListBasedAction::prepareParameters() {
    SortBasedAction::prepareParameters();
    paramPadding = std::clamp(paramPadding, 0, widest);
    startNumber = uAlphaToNum(paramStartValue);
}

std::u16string_view AlphabeticalListBasedAction::getFormattedAlphabeticalString(const InputContext& input) {
    setLettersAfter(std::int64_t{getSortIndex(input)} - 1, formatted);
    return formatted;
}

std::vector<std::u16string> AlphabeticalListBasedAction::firstValues() const {
    std::vector<std::u16string> values(3);
    for (std::size_t i = 0; i < values.size(); ++i)
        setLettersAfter(static_cast<std::int64_t>(i), values[i]);
    return values;
}

void AlphabeticalListBasedAction::setLettersAfter(std::int64_t steps, std::u16string& letters) const {
    const std::int64_t distance = steps * paramStepValue;
    const std::uint64_t sum = static_cast<std::uint64_t>(startNumber) + static_cast<std::uint64_t>(distance);
    letters.clear();
    appendReversed(std::max<std::int64_t>(static_cast<std::int64_t>(sum), 0), letters);
    letters.resize(std::max(letters.size(), static_cast<std::size_t>(paramPadding)), u'A');
    std::reverse(letters.begin(), letters.end());
}

} // namespace tavrin
