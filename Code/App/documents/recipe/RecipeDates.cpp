#include "documents/recipe/RecipeDates.h"

#include "actions/dates/DateFormatter.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavrin::recipe {

namespace {

constexpr std::int32_t none = 0; ///< the choice that leaves date or time out

using Choices = std::span<const ParameterChoice>;

Choices choicesOf(const RecipeAction& action, std::size_t row) { return action.dateRows().at(row)->choices; }

const ParameterChoice* choiceWith(Choices choices, std::int32_t value) {
    const auto found = std::ranges::find(choices, value, &ParameterChoice::value);
    return found == choices.end() ? nullptr : &*found;
}

std::optional<std::int32_t> valueOf(Choices choices, std::string_view word) {
    const auto found = std::ranges::find_if(
        choices, [&](const ParameterChoice& each) { return each.value != none && each.word == word; });
    return found == choices.end() ? std::nullopt : std::optional(found->value);
}

/// The second half of the orders puts the time first.
bool isTimeFirst(const ParameterChoice& order, Choices orders) {
    return static_cast<std::size_t>(&order - orders.data()) >= orders.size() / 2;
}

} // namespace

std::optional<DateChoice> dateChoice(std::string_view given, const RecipeAction& action) {
    const std::string text =
        given.find('%') == given.npos ? std::string(given) : recipeWordOfDatePattern(text::fromUtf8(given));
    const auto dates = choicesOf(action, 0);
    const auto times = choicesOf(action, 1);
    const auto orders = choicesOf(action, 2);
    const auto usualOrder = std::get<std::int32_t>(action.dateRows()[2]->whenNew);
    if (text.empty())
        return DateChoice{none, none, usualOrder};
    if (const auto date = valueOf(dates, text))
        return DateChoice{*date, none, usualOrder};
    if (const auto time = valueOf(times, text))
        return DateChoice{none, *time, usualOrder};
    for (const auto& order : orders) {
        const bool timeFirst = isTimeFirst(order, orders);
        for (const auto& date : dates) {
            if (date.value == none || text.size() < date.word.size() + order.word.size())
                continue;
            const std::string_view whole = text;
            const auto rest = timeFirst ? whole.substr(0, whole.size() - date.word.size() - order.word.size())
                                        : whole.substr(date.word.size() + order.word.size());
            const bool fits =
                timeFirst
                    ? whole.ends_with(date.word) && whole.substr(rest.size()).starts_with(order.word)
                    : whole.starts_with(date.word) && whole.substr(date.word.size()).starts_with(order.word);
            if (!fits)
                continue;
            if (const auto time = valueOf(times, rest))
                return DateChoice{date.value, *time, order.value};
        }
    }
    return std::nullopt;
}

std::optional<std::string> dateText(const DateChoice& choice, const RecipeAction& action) {
    const auto* const date = choiceWith(choicesOf(action, 0), choice[0]);
    const auto* const time = choiceWith(choicesOf(action, 1), choice[1]);
    const auto orders = choicesOf(action, 2);
    const auto* const order = choiceWith(orders, choice[2]);
    if (!date || !time || !order)
        return std::nullopt;
    if (date->value == none)
        return time->value == none ? std::string() : std::string(time->word);
    if (time->value == none)
        return std::string(date->word);
    return isTimeFirst(*order, orders) ? fmt::format("{}{}{}", time->word, order->word, date->word)
                                       : fmt::format("{}{}{}", date->word, order->word, time->word);
}

std::vector<std::string> usualDateTexts(const RecipeAction& action) {
    std::vector<std::string> texts;
    const auto usualOrder = std::get<std::int32_t>(action.dateRows().at(2)->whenNew);
    const auto add = [&](std::int32_t date, std::int32_t time) {
        if (auto text = dateText({date, time, usualOrder}, action); text && !text->empty())
            texts.push_back(std::move(*text));
    };
    for (const auto& date : choicesOf(action, 0))
        add(date.value, none);
    for (const auto& time : choicesOf(action, 1))
        add(none, time.value);
    for (const auto& time : choicesOf(action, 1))
        if (time.value != none)
            add(std::get<std::int32_t>(action.dateRows()[0]->whenNew), time.value);
    return texts;
}

std::vector<std::string> dateTextsFrom(std::string_view beginning, const RecipeAction& action) {
    std::vector<std::string> texts = usualDateTexts(action);
    const auto orders = choicesOf(action, 2);
    for (const auto& order : orders)
        for (const auto& first : choicesOf(action, isTimeFirst(order, orders) ? 1 : 0)) {
            if (first.value == none || beginning.size() <= first.word.size() ||
                !beginning.starts_with(first.word))
                continue;
            for (const auto& second : choicesOf(action, isTimeFirst(order, orders) ? 0 : 1))
                if (second.value != none)
                    texts.push_back(fmt::format("{}{}{}", first.word, order.word, second.word));
        }
    std::erase_if(texts, [&](const std::string& text) { return !text.starts_with(beginning); });
    for (auto text = texts.begin(); text != texts.end(); ++text)
        texts.erase(std::remove(std::next(text), texts.end(), *text), texts.end());
    return texts;
}

} // namespace tavrin::recipe
