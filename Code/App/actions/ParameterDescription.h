#pragma once

#include "support/values/PropertyValue.h"

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

/// The parts of a panel, from top to bottom; in each, the rows have the order of the table.
enum class PanelSection : std::uint8_t {
    front,     ///< what comes before anything else
    own,       ///< what the action is about
    behind,    ///< what follows it
    placement, ///< where in the name it goes
    order,     ///< in which order the items are taken
};

struct ParameterChoice {
    std::int32_t value;
    std::string_view label;
    std::string_view word = {}; ///< in recipes
};

/// How the text of a recipe tells a parameter. Its canonical form has them in this order.
enum class RecipeForm : std::uint8_t {
    stored, ///< by its key alone, or by what the word of another parameter implies
    first,  ///< a text or number directly behind the verb
    date, ///< three of them (date, time, what is between) are one text behind the verb, which may be left out
    alone,  ///< the word of a choice; of two values, the word stands for the one that a new step has not
    phrase, ///< the value behind the word
    part,   ///< which part of the name, the word of a choice
    option, ///< word=value
    mark,   ///< like `alone`, of less weight
    off,    ///< the same, at the end of a step
};

/// A number or a text; tells the type of the parameter too.
using ParameterDefault = std::variant<std::int32_t, std::u16string_view>;

/// One row of an action's parameter table: what panels, the terminal and the tests know of a parameter. All
/// texts are constants of the program.
struct ParameterDescription {
    std::string_view key;
    std::string_view label;
    ParameterKind kind = ParameterKind::text;
    ParameterDefault whenNew; ///< the value that a new action has; a stored list without the key leaves it
    std::span<const ParameterChoice> choices = {};
    std::int32_t minimum = std::numeric_limits<std::int32_t>::min();
    std::int32_t maximum = std::numeric_limits<std::int32_t>::max();
    /// Of use only while the number parameter of this key has the value `shownWhenValue`; always where empty.
    std::string_view shownWhenKey = {};
    std::int32_t shownWhenValue = 0;
    /// Without effect while the number parameter of this key has the value `offWhenValue`.
    std::string_view offWhenKey = {};
    std::int32_t offWhenValue = 0;
    PanelSection section = PanelSection::own;
    std::string_view besideKey = {}; ///< the parameter in whose row of a panel this one stands
    std::string_view head = {};      ///< a heading above the row
    std::int32_t shownOffset = 0;    ///< added to a number wherever it is shown
    bool isHidden = false;           ///< kept in stored lists, but not to be chosen in a panel
    bool isUnused = false;           ///< of no effect, kept in stored lists alone
    RecipeForm form = RecipeForm::stored;
    std::string_view word = {};    ///< as the form has it; choices have words of their own
    bool mayBeLeftOut = false;     ///< of the forms `first` and `phrase`; others always may
    std::string_view scope = {};   ///< `alone` behind the phrase of this word
    std::string_view signKey = {}; ///< the choice (0: plus, 1: minus) that the sign of this number tells
    std::string_view sideKey = {}; ///< the choice whose word stands between the phrase's word and its text

    /// A copy with that condition.
    [[nodiscard]] ParameterDescription shownWhen(std::string_view otherKey, std::int32_t value) const;
    [[nodiscard]] ParameterDescription offWhen(std::string_view otherKey, std::int32_t value) const;
    [[nodiscard]] ParameterDescription in(PanelSection part) const;
    [[nodiscard]] ParameterDescription beside(std::string_view otherKey) const;
    [[nodiscard]] ParameterDescription under(std::string_view heading) const;
    [[nodiscard]] ParameterDescription shownMore(std::int32_t offset) const;
    [[nodiscard]] ParameterDescription hidden() const;
    /// A copy that nobody is offered.
    [[nodiscard]] ParameterDescription unused() const;
    /// A copy for numbers that make sense from `least` to `most`. Whoever lets a user type one keeps to that;
    /// stored ones may be any.
    [[nodiscard]] ParameterDescription between(std::int32_t least, std::int32_t most) const;
    // For recipes.
    [[nodiscard]] ParameterDescription as(RecipeForm recipeForm, std::string_view recipeWord = {}) const;
    [[nodiscard]] ParameterDescription first() const { return as(RecipeForm::first); }
    [[nodiscard]] ParameterDescription alone(std::string_view recipeWord = {}) const {
        return as(RecipeForm::alone, recipeWord);
    }
    [[nodiscard]] ParameterDescription mark(std::string_view recipeWord) const {
        return as(RecipeForm::mark, recipeWord);
    }
    [[nodiscard]] ParameterDescription option(std::string_view recipeWord) const {
        return as(RecipeForm::option, recipeWord);
    }
    [[nodiscard]] ParameterDescription phrase(std::string_view recipeWord) const {
        return as(RecipeForm::phrase, recipeWord);
    }
    [[nodiscard]] ParameterDescription orLeftOut() const;
    [[nodiscard]] ParameterDescription behind(std::string_view phraseWord) const;
    [[nodiscard]] ParameterDescription signedBy(std::string_view otherKey) const;
    [[nodiscard]] ParameterDescription sidedBy(std::string_view otherKey) const;
    [[nodiscard]] bool isText() const { return std::holds_alternative<std::u16string_view>(whenNew); }
};

/// The value that a default stands for.
[[nodiscard]] PropertyValue propertyValue(const ParameterDefault& value);

/// Short forms for the tables.
[[nodiscard]] ParameterDescription textParameter(std::string_view key, std::string_view label,
                                                 std::u16string_view whenNew = u"");
[[nodiscard]] ParameterDescription characterParameter(std::string_view key, std::string_view label,
                                                      std::u16string_view whenNew);
[[nodiscard]] ParameterDescription numberParameter(std::string_view key, std::string_view label,
                                                   std::int32_t whenNew);
[[nodiscard]] ParameterDescription checkboxParameter(std::string_view key, std::string_view label,
                                                     std::int32_t whenNew);
[[nodiscard]] ParameterDescription choiceParameter(std::string_view key, std::string_view label,
                                                   std::span<const ParameterChoice> choices,
                                                   std::int32_t whenNew);
[[nodiscard]] ParameterDescription patternParameter(std::string_view key, std::string_view label,
                                                    std::u16string_view whenNew);

/// Choices that many actions share.
[[nodiscard]] std::span<const ParameterChoice> occurrenceChoices(); ///< first to sixth, last to sixth to last
[[nodiscard]] std::span<const ParameterChoice> positionModeChoices(); ///< from the start, from the end
/// All occurrences (0), or one: first to sixth from 1 on, last to sixth to last from 7 on.
[[nodiscard]] std::span<const ParameterChoice> replacementModeChoices();

} // namespace tavrin
