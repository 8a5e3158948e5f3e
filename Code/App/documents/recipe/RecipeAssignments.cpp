#include "documents/recipe/RecipeAssignments.h"

#include "documents/recipe/RecipeDates.h"
#include "documents/recipe/RecipeSuggestions.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>

namespace tavrin {

namespace {

using Kind = RecipeSynonym::Kind;
using recipe::fail;
using recipe::shown;

/// The choice of that word or synonym; null if there is none. Orders may be turned round by a hyphen.
const ParameterChoice* choiceOf(const ParameterDescription& row, const std::string& given) {
    const bool isBackwards = given.starts_with('-');
    const std::string_view word = std::string_view(given).substr(isBackwards ? 1 : 0);
    std::string meant = given;
    for (const auto kind : {Kind::word, Kind::order})
        if (const auto* synonym = findSynonym(kind, word);
            synonym && !(isBackwards && synonym->meaning.starts_with('-')))
            meant = (isBackwards ? "-" : "") + std::string(synonym->meaning);
    const auto found = std::ranges::find_if(row.choices, [&](const ParameterChoice& choice) {
        return choice.word == given || choice.word == meant;
    });
    return found == row.choices.end() ? nullptr : &*found;
}

/// What numbers may be, as they are shown.
std::string rangeOf(const ParameterDescription& row) {
    if (row.minimum == std::numeric_limits<std::int32_t>::min())
        return "a whole number";
    return fmt::format("a number from {} to {}", std::int64_t{row.minimum} + row.shownOffset,
                       std::int64_t{row.maximum} + row.shownOffset);
}

} // namespace

const RecipeAssignments::Assignment* RecipeAssignments::of(const ParameterDescription& row) const {
    const auto found = std::ranges::find(all, &row, &Assignment::row);
    return found == all.end() ? nullptr : &*found;
}

bool RecipeAssignments::has(const ParameterDescription& row) const { return of(row) != nullptr; }

bool RecipeAssignments::hasKey(std::string_view key) const {
    return std::ranges::any_of(all, [&](const Assignment& each) { return each.row->key == key; });
}

void RecipeAssignments::set(const ParameterDescription& row, PropertyValue value, const RecipeToken& token) {
    if (const auto* before = of(row))
        fail(token, before->value == value
                        ? fmt::format("\"{}\" comes twice", shown(token))
                        : fmt::format("\"{}\" contradicts \"{}\"", shown(token), before->shown));
    all.push_back({&row, std::move(value), shown(token)});
}

void RecipeAssignments::setMode(const RecipeAction& action, const ParameterDescription& row,
                                const RecipeToken& token) {
    if (row.shownWhenKey.empty())
        return;
    const auto& mode = *action.row(row.shownWhenKey);
    if (const auto* before = of(mode))
        fail(token, fmt::format("the end of \"{}\" is told twice", before->shown));
    all.push_back({&mode, row.shownWhenValue, std::string(row.word)});
}

/// Numbers are told as they are shown. A sign that has a row of its own is no part of the number.
void RecipeAssignments::setNumber(const RecipeAction& action, const ParameterDescription& row,
                                  const RecipeToken& token, std::u16string_view digits) {
    const bool hasSignRow = !row.signKey.empty();
    std::string number = text::toUtf8(digits);
    const bool isNegative = number.starts_with('-');
    if (hasSignRow && (isNegative || number.starts_with('+')))
        number.erase(0, 1);
    std::int64_t value = 0;
    const char* const end = number.data() + number.size();
    const auto result = std::from_chars(number.data(), end, value);
    if (number.empty() || result.ptr != end || result.ec == std::errc::invalid_argument ||
        (hasSignRow && number.starts_with('-')))
        fail(token, fmt::format("\"{}\" is no number", text::toUtf8(digits)), rangeOf(row));
    const bool isRepresentable = result.ec == std::errc();
    if (!isRepresentable || value - row.shownOffset < row.minimum || value - row.shownOffset > row.maximum)
        fail(token, fmt::format("{} is out of range", text::toUtf8(digits)), rangeOf(row));
    set(row, value - row.shownOffset, token);
    if (hasSignRow)
        set(*action.row(row.signKey), isNegative ? 1 : 0, token);
}

void RecipeAssignments::setDate(const RecipeAction& action, const RecipeToken& token) {
    const auto choice = recipe::dateChoice(shown(token), action);
    if (!choice) {
        std::vector<std::string> known = recipe::usualDateTexts(action);
        for (const auto& word : action.words())
            known.emplace_back(word.word);
        const auto near =
            nearestWord(shown(token), std::vector<std::string_view>(known.begin(), known.end()));
        fail(token, fmt::format("\"{}\" is no pattern of a date", shown(token)),
             near.empty() ? "patterns are like YYYY-MM-DD, HHmm_YYYYMMDD, \"MMMM DD, YYYY\""
                          : fmt::format("did you mean \"{}\"?", near));
    }
    for (std::size_t i = 0; i < choice->size(); ++i)
        set(*action.dateRows()[i], choice->at(i), token);
}

void RecipeAssignments::setOption(const RecipeAction& action, const ParameterDescription& row,
                                  const RecipeToken& token) {
    const auto value = token.text.substr(token.text.find(u'=') + 1);
    if (row.isText()) {
        set(row, value, token);
        return;
    }
    if (token.isQuoted)
        fail(token, fmt::format("the value of \"{}=\" stands without quotes", row.word));
    if (row.choices.empty()) {
        setNumber(action, row, token, value);
        return;
    }
    const std::string given = text::toUtf8(value);
    if (const auto* choice = choiceOf(row, given)) {
        set(row, choice->value, token);
        return;
    }
    std::vector<RecipeCandidate> allowed;
    for (const auto& choice : row.choices)
        allowed.push_back({std::string(choice.word), std::string(choice.label)});
    fail(token, fmt::format("\"{}=\" does not know \"{}\"", row.word, given),
         recipe::suggestion(given, allowed));
}

void RecipeAssignments::setUsual(const ParameterDescription& row, std::int32_t value) {
    if (!has(row))
        all.push_back({&row, value, {}});
}

void RecipeAssignments::moveInto(PropertyDictionary& parameters) {
    for (auto& each : all)
        parameters.insert_or_assign(std::string(each.row->key), std::move(each.value));
    all.clear();
}

} // namespace tavrin
