#include "documents/recipe/RecipePrinter.h"

#include "documents/recipe/RecipeDates.h"
#include "documents/recipe/RecipeStepReader.h"
#include "documents/recipe/RecipeTokens.h"
#include "platform/propertylists/PropertyList.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavrin {

namespace {

constexpr std::u16string_view slashDelimiters = u"/,:!@~%";

const std::int64_t* integerAt(const PropertyDictionary& parameters, std::string_view key) {
    const auto* value = find(parameters, key);
    return value ? value->asInteger() : nullptr;
}

/// The words of a step whose parameters are in normal form.
class StepWords {
  public:
    StepWords(const RecipeAction& known, const PropertyDictionary& values)
        : action(known), parameters(values) {}

    [[nodiscard]] std::u16string all() {
        if (!appendSlash()) {
            text = text::fromUtf8(action.entry().recipe.verb);
            appendTexts();
        }
        appendLoneWords(RecipeForm::alone, "");
        appendPlace();
        appendLoneWords(RecipeForm::part, "");
        appendOptions();
        appendLoneWords(RecipeForm::mark, "");
        return std::move(text);
    }

  private:
    void append(std::u16string_view word) {
        text += u' ';
        text += word;
    }
    void append(std::string_view word) { append(text::fromUtf8(word)); }

    [[nodiscard]] bool isDefault(const ParameterDescription& row) const {
        return *find(parameters, row.key) == propertyValue(row.whenNew);
    }
    /// What words can say of a row: its text, or that of a new step.
    [[nodiscard]] std::u16string textOf(const ParameterDescription& row) const {
        const auto* value = find(parameters, row.key)->asText();
        return value ? *value : std::u16string(std::get<std::u16string_view>(row.whenNew));
    }
    [[nodiscard]] bool hasNumber(const ParameterDescription& row) const {
        const auto* value = integerAt(parameters, row.key);
        return value && *value >= std::max(row.minimum, row.signKey.empty() ? row.minimum : 0) &&
               *value <= row.maximum;
    }
    [[nodiscard]] std::string numberOf(const ParameterDescription& row, bool showsPlus) const {
        const std::int64_t value =
            hasNumber(row) ? *integerAt(parameters, row.key) : std::get<std::int32_t>(row.whenNew);
        const auto* sign = row.signKey.empty() ? nullptr : integerAt(parameters, row.signKey);
        return (sign && *sign == 1 ? "-" : showsPlus ? "+" : "") + std::to_string(value + row.shownOffset);
    }

    [[nodiscard]] bool appendSlash();
    /// Of a text or number that may be left out: whether words can say what it is, and it is not the usual.
    [[nodiscard]] bool isWorthSaying(const ParameterDescription& row) const;
    void appendTexts();
    void appendDate();
    void appendLoneWords(RecipeForm form, std::string_view scope);
    void appendPlace();
    void appendPhrase(const ParameterDescription& row);
    [[nodiscard]] bool saysNothing(const ParameterDescription& phrase) const;
    void appendOptions();

    const RecipeAction& action;
    const PropertyDictionary& parameters;
    std::u16string text;
    bool isSlash = false;
    std::string_view saidBySlash; ///< the key of the occurrence, if a flag tells it
};

/// Without flags for what a new step has not, the sed-like form means another case and another occurrence.
bool StepWords::appendSlash() {
    const char letter = action.entry().recipe.slash;
    if (letter == 0)
        return false;
    const auto& rows = action.texts();
    const auto pattern = textOf(*rows[0]);
    const auto replacement = textOf(*rows[1]);
    const auto endsInBackslash = [](std::u16string_view part) {
        return (part.size() - (part.find_last_not_of(u'\\') + 1)) % 2 == 1;
    };
    const auto delimiter = std::ranges::find_if(slashDelimiters, [&](char16_t each) {
        return pattern.find(each) == pattern.npos && replacement.find(each) == replacement.npos;
    });
    if (delimiter == slashDelimiters.end() || endsInBackslash(pattern) || endsInBackslash(replacement) ||
        recipe::hasInvisible(pattern) || recipe::hasInvisible(replacement))
        return false;
    isSlash = true;
    text = static_cast<char16_t>(letter);
    ((((text += *delimiter) += pattern) += *delimiter) += replacement) += *delimiter;
    if (const auto* every = action.word("every", "")) {
        saidBySlash = every->row->key;
        const auto* occurrence = integerAt(parameters, saidBySlash);
        const std::int64_t mode = occurrence ? *occurrence : every->value;
        if (mode >= 2 && mode <= 6)
            text += static_cast<char16_t>(u'0' + mode);
        else if (mode > 6 && mode < static_cast<std::int64_t>(every->row->choices.size()))
            saidBySlash = {};
        else if (mode != 1)
            text += u'g';
    }
    const auto* caseWord = action.word("case", "");
    const auto* ignoreCase = integerAt(parameters, caseWord->row->key);
    if (!ignoreCase || *ignoreCase != caseWord->value)
        text += u'i';
    return true;
}

bool StepWords::isWorthSaying(const ParameterDescription& row) const {
    if (row.isText())
        return !isDefault(row) && find(parameters, row.key)->asText();
    const auto* sign = row.signKey.empty() ? nullptr : integerAt(parameters, row.signKey);
    return (sign && *sign == 1) || (!isDefault(row) && hasNumber(row));
}

void StepWords::appendTexts() {
    const auto& rows = action.texts();
    std::size_t count = rows.size();
    while (count > action.requiredTexts() && !isWorthSaying(*rows[count - 1]))
        --count;
    for (std::size_t i = 0; i < count; ++i) {
        if (rows[i]->isText())
            append(recipe::quoted(textOf(*rows[i])));
        else
            append(numberOf(*rows[i], !rows[i]->signKey.empty()));
    }
    if (!action.dateRows().empty())
        appendDate();
}

void StepWords::appendDate() {
    recipe::DateChoice choice{};
    bool isUsual = true;
    for (std::size_t i = 0; i < choice.size(); ++i) {
        const auto& row = *action.dateRows()[i];
        const auto* value = integerAt(parameters, row.key);
        const auto usual = std::get<std::int32_t>(row.whenNew);
        const bool isChoice =
            value && std::ranges::find(row.choices, *value, &ParameterChoice::value) != row.choices.end();
        choice.at(i) = isChoice ? static_cast<std::int32_t>(*value) : usual;
        isUsual = isUsual && choice.at(i) == usual;
    }
    if (const auto pattern = recipe::dateText(choice, action); pattern && !isUsual)
        append(recipe::quoted(text::fromUtf8(*pattern)));
}

void StepWords::appendLoneWords(RecipeForm form, std::string_view scope) {
    for (const auto& row : action.rows()) {
        if (row.form != form || row.scope != scope || row.key == saidBySlash ||
            (isSlash && row.word == "case" && scope.empty()))
            continue;
        const auto* value = integerAt(parameters, row.key);
        if (!value || *value == std::get<std::int32_t>(row.whenNew))
            continue;
        if (!row.word.empty()) {
            if (*value == valueOfMark(row))
                append(row.word);
        } else if (const auto choice = std::ranges::find(row.choices, *value, &ParameterChoice::value);
                   choice != row.choices.end()) {
            append(choice->word);
        }
    }
}

void StepWords::appendPlace() {
    if (const Place place = action.entry().recipe.place; place == Place::start || place == Place::end)
        append(wordOf(place));
    // Of phrases that are forms of one thing, the one that is in force.
    for (const auto& row : action.rows()) {
        if (row.form != RecipeForm::phrase)
            continue;
        if (!row.shownWhenKey.empty()) {
            const auto isMode = [&](std::int64_t mode) {
                return [&, mode](const ParameterDescription& each) {
                    return each.form == RecipeForm::phrase && each.shownWhenKey == row.shownWhenKey &&
                           each.shownWhenValue == mode;
                };
            };
            const auto* mode = integerAt(parameters, row.shownWhenKey);
            const bool isKnown = mode && std::ranges::any_of(action.rows(), isMode(*mode));
            if (row.shownWhenValue !=
                (isKnown ? *mode : std::get<std::int32_t>(action.row(row.shownWhenKey)->whenNew)))
                continue;
        }
        appendPhrase(row);
    }
}

/// A form of a phrase that may be left out, with all that it would say as in a new step.
bool StepWords::saysNothing(const ParameterDescription& phrase) const {
    if (!phrase.mayBeLeftOut || phrase.isText() || (hasNumber(phrase) && !isDefault(phrase)))
        return false;
    const auto* sign = integerAt(parameters, phrase.signKey);
    return !sign || *sign != 1;
}

void StepWords::appendPhrase(const ParameterDescription& row) {
    if (saysNothing(row))
        return;
    append(row.word);
    if (!row.isText()) {
        append(numberOf(row, false));
    } else {
        if (!row.sideKey.empty()) {
            const auto& sideRow = *action.row(row.sideKey);
            const auto* side = integerAt(parameters, row.sideKey);
            const bool isLast = side && *side == sideRow.choices.back().value;
            append((isLast ? sideRow.choices.back() : sideRow.choices.front()).word);
        }
        append(recipe::quoted(textOf(row)));
    }
    // Words of another form of the phrase would be words of the step.
    if (row.isText())
        appendLoneWords(RecipeForm::alone, row.word);
}

void StepWords::appendOptions() {
    for (const auto& row : action.rows()) {
        if (row.form != RecipeForm::option || isDefault(row))
            continue;
        const auto word = text::fromUtf8(row.word) + u'=';
        if (row.isText()) {
            if (find(parameters, row.key)->asText())
                append(word + recipe::quoted(textOf(row)));
        } else if (row.choices.empty()) {
            if (hasNumber(row))
                append(word + text::fromUtf8(numberOf(row, false)));
        } else if (const auto* value = integerAt(parameters, row.key)) {
            if (const auto choice = std::ranges::find(row.choices, *value, &ParameterChoice::value);
                choice != row.choices.end())
                append(word + text::fromUtf8(choice->word));
        }
    }
}

bool isIdentifier(std::string_view key) {
    return !key.empty() && key.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                                 "0123456789_") == key.npos;
}

std::u16string storedEntry(const std::string& key, const PropertyValue& value) {
    const auto name = text::fromUtf8(key);
    return u' ' + (isIdentifier(key) ? name : recipe::quoted(name)) + u":=" + recipe::literal(value);
}

bool isOff(const PropertyDictionary& parameters) {
    const auto* active = integerAt(parameters, "active");
    return active && *active == 0;
}

} // namespace

std::u16string RecipePrinter::step(const PropertyDictionary& stored) {
    const auto* nameValue = find(stored, "action name");
    const auto name = nameValue ? textOrData(*nameValue).value_or(u"") : u"";
    const auto* list = find(stored, "action parameter list");
    const auto* given = list ? list->asDictionary() : nullptr;
    const PropertyDictionary none;
    const auto* action = vocabulary.named(text::toUtf8(name));
    if (!action)
        return byName(name, given ? *given : none);

    const auto parameters = action->normalForm(given ? *given : none);
    auto text = StepWords(*action, parameters).all();
    RecipeLexer lexer(text);
    const auto said = RecipeStepReader(lexer, vocabulary).read();
    const auto& meaning = *find(said, "action parameter list")->asDictionary();
    for (const auto& [key, value] : parameters) {
        const auto* same = find(meaning, key);
        if ((!same || *same != value) && !(key == "active" && isOff(parameters)))
            text += storedEntry(key, value);
    }
    return isOff(parameters) ? text + u" off" : text;
}

/// Of an action that this version does not know, nothing is known but what is stored.
std::u16string RecipePrinter::byName(std::u16string_view name, const PropertyDictionary& parameters) {
    auto text = recipe::quoted(name);
    for (const auto& [key, value] : parameters)
        if (key != "active" || !isOff(parameters))
            text += storedEntry(key, value);
    return isOff(parameters) ? text + u" off" : text;
}

} // namespace tavrin
