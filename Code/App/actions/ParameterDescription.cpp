#include "actions/ParameterDescription.h"

#include <array>
#include <string>

namespace tavrin {

namespace {

constexpr std::array<ParameterChoice, 12> occurrences{{
    {0, "First"},
    {1, "Second"},
    {2, "Third"},
    {3, "Fourth"},
    {4, "Fifth"},
    {5, "Sixth"},
    {6, "Last"},
    {7, "Second to last"},
    {8, "Third to last"},
    {9, "Fourth to last"},
    {10, "Fifth to last"},
    {11, "Sixth to last"},
}};

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

ParameterDescription ParameterDescription::between(std::int32_t least, std::int32_t most) const {
    ParameterDescription copy = *this;
    copy.minimum = least;
    copy.maximum = most;
    return copy;
}

std::span<const ParameterChoice> occurrenceChoices() { return occurrences; }

std::span<const ParameterChoice> positionModeChoices() { return positionModes; }

} // namespace tavrin
