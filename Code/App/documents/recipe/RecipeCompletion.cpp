#include "documents/recipe/RecipeCompletion.h"

#include "documents/recipe/RecipeDates.h"
#include "documents/recipe/RecipeStepReader.h"
#include "documents/recipe/RecipeText.h"
#include "support/text/Text.h"
#include "tags/TagLibraryHelper.h"

#include <algorithm>
#include <optional>

namespace tavrin::recipe {

namespace {

/// The end of a recipe: the step in hand, and the token at the very end, which may be empty.
struct Tail {
    std::size_t stepStart = 0;
    std::size_t tokenStart = 0;
    RecipeToken token;           ///< as if its open quote were closed
    std::u16string_view quote{}; ///< the open one
};

bool hasControls(std::u16string_view text) {
    return std::ranges::any_of(text, [](char16_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); });
}

/// Absent where the end is within something else than a token: a comment, a stored entry, an expression.
/// Throws RecipeMistake.
std::optional<Tail> tailOf(std::u16string_view recipe, std::u16string_view quote) {
    const std::u16string closed = std::u16string(recipe).append(quote);
    RecipeLexer lexer(closed);
    Tail tail;
    tail.quote = quote;
    bool isStart = true;
    for (;;) {
        const std::size_t before = lexer.position();
        const bool isOther = isStart ? lexer.slash().has_value() : lexer.storedKey().has_value();
        if (isOther && !isStart)
            (void)lexer.literal();
        if (isOther && lexer.position() == closed.size())
            return std::nullopt;
        isStart = false;
        if (isOther)
            continue;
        RecipeToken token = lexer.next();
        if (token.isSeparator) {
            isStart = true;
            tail.stepStart = lexer.position();
        } else if (token.isEnd) {
            if (std::u16string_view(closed).substr(before).find(u'#') != closed.npos)
                return std::nullopt;
            tail.tokenStart = closed.size();
            return tail;
        } else if (lexer.position() == closed.size()) {
            tail.tokenStart = token.place.location;
            tail.token = std::move(token);
            return tail;
        }
    }
}

std::optional<Tail> tailOf(std::u16string_view recipe) {
    for (const std::u16string_view quote : {u"", u"\"", u"'"}) {
        try {
            return tailOf(recipe, quote);
        } catch (const RecipeMistake&) {
            // With another quote at its end it may be whole.
        }
    }
    return std::nullopt;
}

/// Gathers what begins like the token.
class Completer {
  public:
    Completer(std::u16string_view recipe, const Tail& end) : text(recipe), tail(end) {}

    void addWords(const RecipeStepReader& step, RecipeVocabulary& vocabulary);
    void addTexts(const RecipeStepReader& step);
    std::vector<Completion> found;

  private:
    void add(std::u16string_view typed, std::u16string_view word, std::string_view about,
             std::u16string_view behind = {}) {
        if (word.starts_with(typed))
            found.push_back(
                {std::u16string(text).append(word.substr(typed.size())).append(behind), std::string(about)});
    }
    void addChoices(const RecipeStepReader& step, std::u16string_view typed);
    void addTags(const RecipeAction& action);
    void addDates(const RecipeAction& action);

    std::u16string_view text;
    const Tail& tail;
};

void Completer::addWords(const RecipeStepReader& step, RecipeVocabulary& vocabulary) {
    if (tail.token.isQuoted || step.expected() == RecipeStepReader::Expected::text)
        return;
    const std::u16string_view typed = tail.token.text;
    if (typed.find(u'=') != typed.npos && step.expected() == RecipeStepReader::Expected::word) {
        addChoices(step, typed);
        return;
    }
    if (step.expected() == RecipeStepReader::Expected::verb)
        for (const std::u16string_view form : {u"s/", u"m/"}) {
            const auto& actions = vocabulary.withVerb(text::toUtf8(form.substr(0, 1)));
            add(typed, form, actions.front()->entry().label);
        }
    for (const auto& each : step.candidates())
        add(typed, text::fromUtf8(each.word), each.about);
}

void Completer::addChoices(const RecipeStepReader& step, std::u16string_view typed) {
    const std::string name = text::toUtf8(typed.substr(0, typed.find(u'=')));
    const auto offered = step.candidates();
    if (std::ranges::find(offered, name + '=', &RecipeCandidate::word) == offered.end())
        return;
    for (const auto* action : step.actions())
        if (const auto* row = action->option(name)) {
            for (const auto& choice : row->choices)
                add(typed, text::fromUtf8(name + '=').append(text::fromUtf8(choice.word)), choice.label);
            return;
        }
}

void Completer::addTexts(const RecipeStepReader& step) {
    const bool isOpen = !tail.quote.empty();
    if (step.expected() != RecipeStepReader::Expected::word || step.actions().empty() ||
        !(isOpen ? step.mayTakeText() : !tail.token.isQuoted && step.mayTakeBareText()))
        return;
    const RecipeAction& action = *step.actions().front();
    addTags(action);
    if (!action.dateRows().empty() && (isOpen || !tail.token.text.empty()))
        addDates(action);
}

void Completer::addTags(const RecipeAction& action) {
    const std::u16string_view typed = tail.token.text;
    const auto start = typed.rfind(u'<');
    if (start == typed.npos || typed.find(u'>', start) != typed.npos)
        return;
    const auto& library = TagLibraryHelper::sharedInstance().tagItemsByName();
    for (const auto tag : action.tags()) {
        const auto item = library.find(tag);
        add(typed.substr(start), tag, item == library.end() ? "" : item->second.description);
    }
}

/// Without quotes, those that need none.
void Completer::addDates(const RecipeAction& action) {
    for (const auto& pattern : dateTextsFrom(text::toUtf8(tail.token.text), action))
        if (!tail.quote.empty() || pattern.find_first_of(" #;|'\"") == pattern.npos)
            add(tail.token.text, text::fromUtf8(pattern), action.entry().label, tail.quote);
}

} // namespace

std::vector<Completion> completions(std::u16string_view recipe, RecipeVocabulary& vocabulary) {
    if (recipe.size() > RecipeText::mostUnits || hasControls(recipe))
        return {};
    const auto tail = tailOf(recipe);
    if (!tail)
        return {};
    const auto before = recipe.substr(tail->stepStart, tail->tokenStart - tail->stepStart);
    RecipeLexer lexer(before);
    RecipeStepReader step(lexer, vocabulary);
    if (before.find_first_not_of(u" ") != before.npos) {
        try {
            step.takeWords();
        } catch (const RecipeMistake&) {
            if (!step.hasEnded())
                return {};
        }
    }
    Completer completer(recipe, *tail);
    completer.addWords(step, vocabulary);
    completer.addTexts(step);
    return std::move(completer.found);
}

} // namespace tavrin::recipe
