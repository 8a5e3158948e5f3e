#include "GivenParameters.h"

#include "ActionNames.h"
#include "ExitStatus.h"
#include "documents/recipe/RecipeWords.h"
#include "support/text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <system_error>

namespace tavrin {

namespace {

using Kind = RecipeSynonym::Kind;
using Rows = std::vector<const ParameterDescription*>;
using Choices = std::vector<const ParameterChoice*>;

[[noreturn]] void refuse(const KeyAndValue& given, const std::string& reason) {
    throw UsageError(fmt::format("{}={}: {}", given.first, given.second, reason));
}

// --- Which parameter

/// The word in front of its value, if it is told so.
std::string_view wordInFront(const ParameterDescription& row) {
    return row.form == RecipeForm::option || row.form == RecipeForm::phrase ? row.word : std::string_view();
}

/// Those with that key; else with that label, else with that word, of those that are offered.
Rows rowsNamed(const BaseRenameAction& action, std::string_view name) {
    Rows offered;
    for (const ParameterDescription& row : action.parameters()) {
        if (row.key == name)
            return {&row};
        if (isOffered(action, row))
            offered.push_back(&row);
    }
    const std::string small = actionNames::inSmallLetters(name);
    const auto* const synonym = findSynonym(Kind::option, small);
    const auto those = [&](auto isMeant) {
        Rows found;
        std::ranges::copy_if(offered, std::back_inserter(found),
                             [&](const auto* row) { return isMeant(*row); });
        return found;
    };
    const auto isSmall = [&](std::string_view text) { return actionNames::inSmallLetters(text) == small; };
    Rows found = those([&](const ParameterDescription& row) { return isSmall(row.key); });
    if (found.empty())
        found = those([&](const ParameterDescription& row) { return isSmall(row.label); });
    if (found.empty())
        found = those(
            [&](const ParameterDescription& row) { return !small.empty() && wordInFront(row) == small; });
    if (found.empty() && synonym)
        found = those([&](const ParameterDescription& row) { return wordInFront(row) == synonym->meaning; });
    return found;
}

[[noreturn]] void refuseUnknown(const BaseRenameAction& action, std::string_view name) {
    std::vector<std::string_view> keys, known;
    for (const ParameterDescription& row : action.parameters())
        if (isOffered(action, row)) {
            keys.push_back(row.key);
            known.insert(known.end(), {row.key, row.label, wordInFront(row)});
        }
    const std::string_view nearest = nearestWord(name, known);
    throw UsageError(fmt::format("the action \"{}\" has no parameter \"{}\"; {}", action.actionName(), name,
                                 nearest.empty() ? fmt::format("it has: {}", fmt::join(keys, ", "))
                                                 : fmt::format("did you mean \"{}\"?", nearest)));
}

const ParameterDescription& rowNamed(const BaseRenameAction& action, std::string_view name) {
    const Rows found = rowsNamed(action, name);
    if (found.empty())
        refuseUnknown(action, name);
    const ParameterDescription& row = *found.front();
    if (found.size() > 1) {
        std::vector<std::string_view> keys;
        for (const ParameterDescription* each : found)
            keys.push_back(each->key);
        throw UsageError(fmt::format("the action \"{}\" has several parameters \"{}\": {}",
                                     action.actionName(), name, fmt::join(keys, ", ")));
    }
    if (!action.hasUseFor(row))
        throw UsageError(fmt::format(
            "the parameter \"{}\" has no effect in the action \"{}\"{}", row.key, action.actionName(),
            row.key == "fragmentSelection"      ? ", which always takes the whole name"
            : row.kind == ParameterKind::status ? ", which writes it itself"
                                                : ": it is kept for what is stored"));
    return row;
}

// --- Which value

/// Absent where anything else stands there too. A number that is too great is the greatest.
std::optional<std::int64_t> wholeNumber(std::string_view text) {
    std::int64_t number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::invalid_argument || stop != text.data() + text.size())
        return std::nullopt;
    return error == std::errc() ? number : std::numeric_limits<std::int64_t>::max();
}

std::int32_t numberFor(const ParameterDescription& row, const KeyAndValue& given) {
    const std::optional<std::int64_t> number = wholeNumber(given.second);
    if (!number)
        refuse(given, "expected a whole number");
    if (*number < row.minimum || *number > row.maximum)
        refuse(given, fmt::format("expected a number from {} to {}", row.minimum, row.maximum));
    return static_cast<std::int32_t>(*number);
}

/// Those with that number; else word, label or word in any case, or synonym.
Choices choicesNamed(const ParameterDescription& row, std::string_view name) {
    const std::optional<std::int64_t> number = wholeNumber(name);
    const std::string small = actionNames::inSmallLetters(name);
    const auto those = [&](auto isMeant) {
        Choices found;
        for (const ParameterChoice& choice : row.choices)
            if (isMeant(choice))
                found.push_back(&choice);
        return found;
    };
    const auto withWord = [&](std::string_view word) {
        return those([&](const auto& choice) { return !word.empty() && wordOf(row, choice) == word; });
    };
    Choices found = those([&](const auto& choice) { return number == choice.value; });
    if (found.empty())
        found = withWord(name);
    if (found.empty())
        found = those([&](const auto& choice) { return actionNames::inSmallLetters(choice.label) == small; });
    if (found.empty())
        found = those([&](const auto& choice) {
            return !small.empty() && actionNames::inSmallLetters(wordOf(row, choice)) == small;
        });
    for (const auto kind : {Kind::word, Kind::order})
        if (const auto* synonym = found.empty() ? findSynonym(kind, small) : nullptr)
            found = withWord(synonym->meaning);
    return found;
}

std::string inShort(const ParameterChoice& choice) {
    return fmt::format("{} ({})", choice.value, choice.label);
}

[[noreturn]] void refuseChoice(const BaseRenameAction& action, const ParameterDescription& row,
                               const KeyAndValue& given) {
    constexpr std::size_t fewEnough = 14;
    std::vector<std::string_view> known;
    std::vector<std::string> all;
    for (const ParameterChoice& choice : row.choices) {
        known.insert(known.end(), {choice.label, wordOf(row, choice)});
        all.push_back(inShort(choice));
    }
    // A number is not taken for a slip of the finger.
    if (const std::string_view nearest = nearestWord(given.second, known);
        !nearest.empty() && !wholeNumber(given.second))
        refuse(given, fmt::format("did you mean \"{}\"?", nearest));
    refuse(given, all.size() <= fewEnough
                      ? fmt::format("expected one of {}", fmt::join(all, ", "))
                      : fmt::format("expected one of {} choices; tvrn actions \"{}\" lists them", all.size(),
                                    action.actionName()));
}

std::int32_t choiceFor(const BaseRenameAction& action, const ParameterDescription& row,
                       const KeyAndValue& given) {
    const Choices found = choicesNamed(row, given.second);
    if (found.empty())
        refuseChoice(action, row, given);
    if (found.size() == 1)
        return found.front()->value;
    std::vector<std::string> all;
    for (const ParameterChoice* choice : found)
        all.push_back(inShort(*choice));
    refuse(given, fmt::format("that may be {}", fmt::join(all, " or ")));
}

/// As the action would have it. What differs from that in more than its form is not changed tacitly.
std::u16string textFor(const BaseRenameAction& action, const ParameterDescription& row,
                       const KeyAndValue& given) {
    std::u16string typed = text::fromBytes(given.second);
    if (typed.empty())
        return typed;
    if (row.kind == ParameterKind::character && text::firstComposedSequence(typed) != typed)
        refuse(given, "expected a single character");
    std::u16string valid = textValue(action.validatedValue(typed, row.key));
    if (valid != typed && !text::uppercased(typed).ends_with(valid))
        refuse(given, fmt::format("expected something like \"{}\"", text::toUtf8(valid)));
    return valid;
}

} // namespace

bool isOffered(const BaseRenameAction& action, const ParameterDescription& row) {
    return action.hasUseFor(row) && !(row.isHidden && row.form == RecipeForm::stored);
}

void setParameter(BaseRenameAction& action, const KeyAndValue& given) {
    const ParameterDescription& row = rowNamed(action, given.first);
    action.setValue(row.isText()           ? PropertyValue(textFor(action, row, given))
                    : !row.choices.empty() ? PropertyValue(choiceFor(action, row, given))
                                           : PropertyValue(numberFor(row, given)),
                    std::string(row.key));
}

} // namespace tavrin
