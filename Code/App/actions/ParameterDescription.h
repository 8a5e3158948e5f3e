#pragma once

#include "support/PropertyValue.h"

#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <variant>

namespace tavrin {

/// The kind of editor that suits a parameter.
enum class ParameterKind {
    text,      ///< free text
    character, ///< one composed character sequence
    number,    ///< a whole number within `minimum` and `maximum`
    checkbox,  ///< 1 or 0
    choice,    ///< one of `choices`
    pattern,   ///< text with tags of the tag library in it
    file,      ///< the path of a file to read, as text
    status,    ///< a text that the action writes for the user to read
};

struct ParameterChoice {
    std::int32_t value;
    std::string_view label;
};

/// A number or a text; tells the type of the parameter too.
using ParameterDefault = std::variant<std::int32_t, std::u16string_view>;

/// One row of an action's parameter table: what panels, the terminal and the tests know of a parameter. All
/// texts are constants of the program.
struct ParameterDescription {
    std::string_view key;
    std::string_view label;
    ParameterKind kind = ParameterKind::text;
    ParameterDefault whenNew;    ///< the value that a new action has
    ParameterDefault whenAbsent; ///< the value that counts when the key is missing
    std::span<const ParameterChoice> choices = {};
    std::int32_t minimum = std::numeric_limits<std::int32_t>::min();
    std::int32_t maximum = std::numeric_limits<std::int32_t>::max();
    /// Of use only while the number parameter of this key has the value `shownWhenValue`; always where empty.
    std::string_view shownWhenKey = {};
    std::int32_t shownWhenValue = 0;

    /// A copy with that condition.
    [[nodiscard]] ParameterDescription shownWhen(std::string_view otherKey, std::int32_t value) const;
    /// A copy for numbers that make sense from `least` to `most`: a help for whoever edits, no check.
    [[nodiscard]] ParameterDescription between(std::int32_t least, std::int32_t most) const;
    [[nodiscard]] bool isText() const { return std::holds_alternative<std::u16string_view>(whenNew); }
};

/// The value that a default stands for.
[[nodiscard]] PropertyValue propertyValue(const ParameterDefault& value);

/// Short forms for the tables. Where the defaults for new and absent differ, both are told.
[[nodiscard]] ParameterDescription textParameter(std::string_view key, std::string_view label,
                                                 std::u16string_view whenNew = u"");
[[nodiscard]] ParameterDescription characterParameter(std::string_view key, std::string_view label,
                                                      std::u16string_view whenNew);
[[nodiscard]] ParameterDescription numberParameter(std::string_view key, std::string_view label,
                                                   std::int32_t whenNew, std::int32_t whenAbsent);
[[nodiscard]] ParameterDescription checkboxParameter(std::string_view key, std::string_view label,
                                                     std::int32_t whenNew, std::int32_t whenAbsent);
[[nodiscard]] ParameterDescription choiceParameter(std::string_view key, std::string_view label,
                                                   std::span<const ParameterChoice> choices,
                                                   std::int32_t whenNew, std::int32_t whenAbsent);

[[nodiscard]] ParameterDescription patternParameter(std::string_view key, std::string_view label,
                                                    std::u16string_view whenNew);

/// Choices that many actions share.
[[nodiscard]] std::span<const ParameterChoice> occurrenceChoices(); ///< first to sixth, last to sixth to last
[[nodiscard]] std::span<const ParameterChoice> positionModeChoices(); ///< from the start, from the end

} // namespace tavrin
