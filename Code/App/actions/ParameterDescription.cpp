#include "actions/ParameterDescription.h"

#include <array>
#include <string>

namespace tavrin {

namespace {

constexpr std::array<ParameterChoice, 13> everyAndOccurrences{{
    {0, "All", "every"},
    {1, "First", "1st"},
    {2, "Second", "2nd"},
    {3, "Third", "3rd"},
    {4, "Fourth", "4th"},
    {5, "Fifth", "5th"},
    {6, "Sixth", "6th"},
    {7, "Last", "last"},
    {8, "Second to last", "2nd-last"},
    {9, "Third to last", "3rd-last"},
    {10, "Fourth to last", "4th-last"},
    {11, "Fifth to last", "5th-last"},
    {12, "Sixth to last", "6th-last"},
}};

/// The same without "All", counted from 0.
constexpr auto occurrences = [] {
    std::array<ParameterChoice, everyAndOccurrences.size() - 1> choices{};
    for (std::size_t i = 0; i < choices.size(); ++i) {
        choices[i] = everyAndOccurrences[i + 1];
        --choices[i].value;
    }
    return choices;
}();

constexpr std::array<ParameterChoice, 2> positionModes{{{0, "from the start"}, {1, "from the end"}}};

constexpr std::array<ParameterChoice, 2> checkboxStates{{{0, "off"}, {1, "on"}}};

} // namespace

PropertyValue propertyValue(const ParameterDefault& value) {
    if (const auto* number = std::get_if<std::int32_t>(&value))
        return *number;
    return std::u16string(std::get<std::u16string_view>(value));
}

ParameterDescription textParameter(std::string_view key, std::string_view label,
                                   std::u16string_view whenNew) {
    return {key, label, ParameterKind::text, whenNew};
}

ParameterDescription characterParameter(std::string_view key, std::string_view label,
                                        std::u16string_view whenNew) {
    return {key, label, ParameterKind::character, whenNew};
}

ParameterDescription numberParameter(std::string_view key, std::string_view label, std::int32_t whenNew) {
    return {key, label, ParameterKind::number, whenNew};
}

ParameterDescription checkboxParameter(std::string_view key, std::string_view label, std::int32_t whenNew) {
    return {key, label, ParameterKind::checkbox, whenNew, checkboxStates};
}

ParameterDescription choiceParameter(std::string_view key, std::string_view label,
                                     std::span<const ParameterChoice> choices, std::int32_t whenNew) {
    return {key, label, ParameterKind::choice, whenNew, choices};
}

ParameterDescription patternParameter(std::string_view key, std::string_view label,
                                      std::u16string_view whenNew) {
    return {key, label, ParameterKind::pattern, whenNew};
}

ParameterDescription ParameterDescription::shownWhen(std::string_view otherKey, std::int32_t value) const {
    ParameterDescription copy = *this;
    copy.shownWhenKey = otherKey;
    copy.shownWhenValue = value;
    return copy;
}

ParameterDescription ParameterDescription::offWhen(std::string_view otherKey, std::int32_t value) const {
    ParameterDescription copy = *this;
    copy.offWhenKey = otherKey;
    copy.offWhenValue = value;
    return copy;
}

ParameterDescription ParameterDescription::in(PanelSection part) const {
    ParameterDescription copy = *this;
    copy.section = part;
    return copy;
}

ParameterDescription ParameterDescription::beside(std::string_view otherKey) const {
    ParameterDescription copy = *this;
    copy.besideKey = otherKey;
    return copy;
}

ParameterDescription ParameterDescription::under(std::string_view heading) const {
    ParameterDescription copy = *this;
    copy.head = heading;
    return copy;
}

ParameterDescription ParameterDescription::shownMore(std::int32_t offset) const {
    ParameterDescription copy = *this;
    copy.shownOffset = offset;
    return copy;
}

ParameterDescription ParameterDescription::hidden() const {
    ParameterDescription copy = *this;
    copy.isHidden = true;
    return copy;
}

ParameterDescription ParameterDescription::unused() const {
    ParameterDescription copy = hidden();
    copy.isUnused = true;
    return copy;
}

ParameterDescription ParameterDescription::between(std::int32_t least, std::int32_t most) const {
    ParameterDescription copy = *this;
    copy.minimum = least;
    copy.maximum = most;
    return copy;
}

ParameterDescription ParameterDescription::as(RecipeForm recipeForm, std::string_view recipeWord) const {
    ParameterDescription copy = *this;
    copy.form = recipeForm;
    copy.word = recipeWord;
    return copy;
}

ParameterDescription ParameterDescription::orLeftOut() const {
    ParameterDescription copy = *this;
    copy.mayBeLeftOut = true;
    return copy;
}

ParameterDescription ParameterDescription::behind(std::string_view phraseWord) const {
    ParameterDescription copy = *this;
    copy.scope = phraseWord;
    return copy;
}

ParameterDescription ParameterDescription::signedBy(std::string_view otherKey) const {
    ParameterDescription copy = *this;
    copy.signKey = otherKey;
    return copy;
}

ParameterDescription ParameterDescription::sidedBy(std::string_view otherKey) const {
    ParameterDescription copy = *this;
    copy.sideKey = otherKey;
    return copy;
}

std::span<const ParameterChoice> occurrenceChoices() { return occurrences; }

std::span<const ParameterChoice> replacementModeChoices() { return everyAndOccurrences; }

std::span<const ParameterChoice> positionModeChoices() { return positionModes; }

} // namespace tavrin
