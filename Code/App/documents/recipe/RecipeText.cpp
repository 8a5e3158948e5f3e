#include "documents/recipe/RecipeText.h"

#include "documents/recipe/RecipePrinter.h"
#include "documents/recipe/RecipeStepReader.h"
#include "support/text/DisplayText.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavrin::RecipeText {

namespace {

constexpr std::size_t mostAround = 300; ///< units of an excerpt on either side
constexpr const char* stepsKey = "composite actions array";

/// Each thread has actions of its own to ask.
RecipeVocabulary& vocabulary() {
    thread_local RecipeVocabulary words;
    return words;
}

std::string shownText(std::u16string_view text) { return display::visible(text); }

std::size_t columnsOf(std::u16string_view text) { return display::columns(text::fromUtf8(shownText(text))); }

Remark remarkOn(std::u16string_view recipe, const RecipeMistake& mistake) {
    const std::size_t at = std::min(mistake.place.location, recipe.size());
    const std::size_t before = recipe.substr(0, at).rfind(u'\n');
    const std::size_t start = before == recipe.npos ? 0 : before + 1;
    const std::size_t end = std::min(recipe.find(u'\n', at), recipe.size());
    const std::size_t placeEnd = std::clamp(mistake.place.end(), at, end);
    Remark remark;
    remark.line = 1 + static_cast<std::size_t>(std::ranges::count(recipe.substr(0, at), u'\n'));
    remark.column = 1 + columnsOf(recipe.substr(start, at - start));
    remark.length = std::max<std::size_t>(columnsOf(recipe.substr(at, placeEnd - at)), 1);
    remark.message = display::visible(mistake.message);
    remark.hint = display::visible(mistake.hint);
    const std::size_t excerptStart = at - start > mostAround ? at - mostAround : start;
    const std::size_t excerptEnd = end - at > mostAround ? at + mostAround : end;
    remark.excerpt = shownText(recipe.substr(excerptStart, excerptEnd - excerptStart));
    remark.excerptColumn = 1 + columnsOf(recipe.substr(excerptStart, at - excerptStart));
    return remark;
}

} // namespace

std::string Remark::sentence() const { return hint.empty() ? message : message + "; " + hint; }

std::variant<Reading, Remark> read(std::u16string_view recipe) {
    try {
        if (recipe.size() > mostUnits)
            throw RecipeMistake{{mostUnits, 1}, fmt::format("a recipe has at most {} characters", mostUnits)};
        RecipeLexer lexer(recipe);
        Reading reading;
        PropertyArray steps;
        for (;;) {
            const std::size_t start = lexer.position();
            const auto slash = lexer.slash();
            if (!slash) {
                const auto token = lexer.next();
                if (token.isEnd)
                    break;
                if (token.isSeparator)
                    continue;
            }
            lexer.goTo(start);
            if (steps.size() == mostSteps)
                throw RecipeMistake{{start, 1}, fmt::format("a recipe has at most {} steps", mostSteps)};
            RecipeStepReader step(lexer, vocabulary());
            steps.emplace_back(step.read());
            for (const auto& note : step.notes())
                reading.notes.push_back(remarkOn(recipe, note));
        }
        if (steps.empty())
            throw RecipeMistake{{0, recipe.size()}, "there is no step in it"};
        reading.flatParameterList.emplace("currentActionIndex", 0);
        reading.flatParameterList.emplace(stepsKey, std::move(steps));
        return reading;
    } catch (const RecipeMistake& mistake) {
        return remarkOn(recipe, mistake);
    }
}

std::vector<std::u16string> writeSteps(const PropertyDictionary& flatParameterList) {
    std::vector<std::u16string> lines;
    RecipePrinter printer(vocabulary());
    const auto* list = find(flatParameterList, stepsKey);
    const auto* steps = list ? list->asArray() : nullptr;
    if (steps)
        for (const auto& step : *steps)
            if (const auto* content = step.asDictionary())
                lines.push_back(printer.step(*content));
    return lines;
}

PropertyDictionary withoutStatus(PropertyDictionary flatParameterList) {
    const auto list = flatParameterList.find(stepsKey);
    auto* steps = list == flatParameterList.end() ? nullptr : list->second.asArray();
    if (!steps)
        return flatParameterList;
    for (auto& step : *steps) {
        auto* content = step.asDictionary();
        const auto* name = content ? find(*content, "action name") : nullptr;
        const auto* action = name ? vocabulary().named(text::toUtf8(textValue(*name))) : nullptr;
        const auto parameters =
            content ? content->find("action parameter list") : PropertyDictionary::iterator();
        if (!action || parameters == content->end() || !parameters->second.asDictionary())
            continue;
        for (const auto& row : action->rows())
            if (row.kind == ParameterKind::status)
                parameters->second.asDictionary()->erase(std::string(row.key));
    }
    return flatParameterList;
}

std::u16string write(const PropertyDictionary& flatParameterList) {
    std::u16string text;
    for (const auto& step : writeSteps(flatParameterList))
        (text += text.empty() ? u"" : u" | ") += step;
    return text;
}

} // namespace tavrin::RecipeText
