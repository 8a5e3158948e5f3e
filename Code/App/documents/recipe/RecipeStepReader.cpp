#include "documents/recipe/RecipeStepReader.h"

#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tavrin {

namespace {

using Kind = RecipeSynonym::Kind;
using Expected = RecipeStepReader::Expected;
using recipe::fail;
using recipe::shown;

/// The token as a word of the language may be written: bare and of ASCII; else empty.
std::string asciiOf(const RecipeToken& token) {
    return token.isQuoted || !text::isAscii(token.text) ? std::string() : text::toUtf8(token.text);
}

bool looksLikeNumber(const RecipeToken& token) {
    const std::string word = asciiOf(token);
    return !word.empty() &&
           word.find_first_not_of("0123456789", word[0] == '-' || word[0] == '+' ? 1 : 0) == word.npos &&
           word.back() >= '0' && word.back() <= '9';
}

/// The form of a place, for messages.
std::string_view formOf(Place place) {
    constexpr std::array<std::string_view, 6> forms{"",          "start",       "end",
                                                    "at NUMBER", "before TEXT", "after TEXT"};
    return forms.at(static_cast<std::size_t>(place));
}

std::string aboutOf(const RecipeAction::Word& word) {
    const auto choice = std::ranges::find(word.row->choices, word.value, &ParameterChoice::value);
    return choice == word.row->choices.end() || choice->label.empty()
               ? std::string(word.row->label)
               : fmt::format("{}: {}", word.row->label, choice->label);
}

} // namespace

PropertyDictionary RecipeStepReader::read() {
    takeWords();
    return finish();
}

void RecipeStepReader::takeWords() {
    if (const auto slash = lexer.slash())
        takeSlash(*slash);
    else
        takeVerb();
    do
        next = Expected::word;
    while (takeWord());
    ended = true;
}

// ---- the verb and its texts

void RecipeStepReader::takeVerb() {
    verb = lexer.next();
    if (verb.isQuoted && verb.bareUnits == 0) {
        takeStoredName(verb);
        return;
    }
    verbWord = asciiOf(verb);
    if (verbWord.size() > 1)
        group = vocabulary.withVerb(verbWord);
    const auto* synonym = group.empty() ? findSynonym(Kind::verb, verbWord) : nullptr;
    if (synonym)
        group = vocabulary.withVerb(synonym->meaning);
    if (group.empty())
        recipe::failVerb(verb, candidates());
    left = group;
    if (synonym && synonym->place != Place::wholeName)
        takePlace(synonym->place, verb);
    takeRequiredTexts();
}

void RecipeStepReader::takeStoredName(const RecipeToken& token) {
    isByName = true;
    storedName = text::toUtf8(token.text);
    if (const auto* action = vocabulary.named(storedName))
        left = group = {action};
}

void RecipeStepReader::takeRequiredTexts() {
    const auto& rows = left.front()->texts();
    const std::size_t needed = left.front()->requiredTexts();
    while (texts.size() < needed) {
        next = Expected::text;
        const std::size_t start = lexer.position();
        auto token = lexer.next();
        if (!token.isText()) {
            lexer.goTo(start);
            const bool isNumber = !rows[texts.size()]->isText();
            ended = token.isEnd;
            fail(verb,
                 fmt::format("\"{}\" needs {} {}{}", shown(verb), needed, isNumber ? "number" : "text",
                             needed == 1 ? "" : "s"),
                 isNumber ? "" : "an empty text is \"\"");
        }
        texts.push_back(std::move(token));
    }
}

void RecipeStepReader::takeSlash(const RecipeSlash& slash) {
    verb.place = slash.place;
    verbWord = slash.letter;
    verb.text = text::fromUtf8(verbWord);
    isSlash = true;
    left = group = vocabulary.withVerb(verbWord);
    if (left.empty())
        recipe::failVerb(verb, candidates());
    for (const auto& part : {slash.pattern, slash.replacement}) {
        RecipeToken token;
        token.place = slash.place;
        token.text = part;
        texts.push_back(std::move(token));
    }
    texts.back().place = slash.replacementPlace;
    takeFlags(slash);
}

/// As in sed, the case of letters counts unless `i` is said, and only the first match is meant unless `g` or
/// a number is.
void RecipeStepReader::takeFlags(const RecipeSlash& slash) {
    const RecipeAction& action = *left.front();
    const auto* caseWord = action.word("case", "");
    const bool hasOccurrences = action.word("1st", "") != nullptr;
    bool ignoresCase = false;
    std::string_view occurrence;
    for (std::size_t i = 0; i < slash.flags.size(); ++i) {
        const char16_t flag = slash.flags[i];
        constexpr std::array<std::string_view, 6> counted{"1st", "2nd", "3rd", "4th", "5th", "6th"};
        if (flag == u'i' && !ignoresCase)
            ignoresCase = true;
        else if (hasOccurrences && occurrence.empty() && flag == u'g')
            occurrence = "every";
        else if (hasOccurrences && occurrence.empty() && flag >= u'1' && flag <= u'6')
            occurrence = counted.at(flag - u'1');
        else
            throw RecipeMistake{{slash.flagsStart + i, 1},
                                fmt::format("\"{}\" is no flag here", text::toUtf8(slash.flags.substr(i, 1))),
                                hasOccurrences ? "flags are i, and g or one of 1 to 6"
                                               : "the only flag is i"};
    }
    RecipeToken flags;
    flags.place = {slash.flagsStart, slash.flags.size()};
    flags.text = slash.flags;
    if (!ignoresCase)
        assignments.set(*caseWord->row, caseWord->value, flags);
    if (!occurrence.empty())
        assignments.set(*action.word(occurrence, "")->row, action.word(occurrence, "")->value, flags);
    else if (hasOccurrences)
        usual = *action.word("1st", "");
}

// ---- words

bool RecipeStepReader::takeWord() {
    if (takeStored())
        return true;
    const std::size_t start = lexer.position();
    const auto token = lexer.next();
    if (!token.isText()) {
        lexer.goTo(start);
        return false;
    }
    const std::string word = asciiOf(token);
    if (!word.empty() && takeKnownWord(word, token))
        return true;
    if (const auto* synonym = findSynonym(Kind::word, word);
        synonym && takeKnownWord(synonym->meaning, token))
        return true;
    if (!isByName && (takeOption(token) || takeOptionalText(token)))
        return true;
    failWord(token);
}

bool RecipeStepReader::takeStored() {
    lexer.skipBlanks();
    const std::size_t start = lexer.position();
    const auto key = lexer.storedKey();
    if (!key)
        return false;
    RecipeToken token;
    token.place = {start, lexer.position() - start};
    auto name = left.empty() ? text::toUtf8(*key) : BaseAction::internalKeyToExternalKey(text::toUtf8(*key));
    if (std::ranges::find(stored, name, &StoredEntry::key) != stored.end())
        fail(token, fmt::format("\"{}\" comes twice", name));
    stored.push_back({std::move(name), lexer.literal()});
    return true;
}

bool RecipeStepReader::takeKnownWord(std::string_view word, const RecipeToken& token) {
    if (isByName) {
        if (word != "off")
            return false;
        if (std::ranges::find(loneWords, word, &Said::word) != loneWords.end())
            fail(token, "\"off\" comes twice");
        loneWords.push_back({"off", "", token});
        return true;
    }
    for (const Place each : {Place::start, Place::end, Place::position, Place::beforeText, Place::afterText})
        if (word == wordOf(each) && hasPlace(each)) {
            takePlace(each, token);
            return true;
        }
    if (left.front()->hasPhrase(word) && !place) {
        takePhrase(word, token);
        return true;
    }
    return takeLoneWord(word, token);
}

bool RecipeStepReader::hasPlace(Place wanted) const {
    return std::ranges::any_of(group, [&](const auto* each) { return each->entry().recipe.place == wanted; });
}

void RecipeStepReader::takePlace(Place wanted, const RecipeToken& token) {
    if (place)
        fail(token, fmt::format("\"{}\" has a place already", shown(verb)));
    std::erase_if(left, [&](const auto* each) { return each->entry().recipe.place != wanted; });
    if (left.empty())
        fail(token, fmt::format("\"{}\" does not go with the words in front of it", shown(token)));
    place = wanted;
    scope = {};
    if (left.front()->hasPhrase(wordOf(wanted)))
        takePhrase(wordOf(wanted), token);
}

void RecipeStepReader::takePhrase(std::string_view word, const RecipeToken& token) {
    const RecipeAction& action = *left.front();
    const ParameterDescription* textRow = nullptr;
    const ParameterDescription* numberRow = nullptr;
    for (const auto& row : action.rows())
        if (row.form == RecipeForm::phrase && row.word == word)
            (row.isText() ? textRow : numberRow) = &row;
    scope = (textRow ? textRow : numberRow)->word;
    phraseInHand = nullptr;
    const bool isBound = textRow && !textRow->sideKey.empty();
    next = isBound ? Expected::bound : Expected::text;
    const std::size_t start = lexer.position();
    const auto value = lexer.next();
    if (value.isText() && isBound && takeBound(*textRow, numberRow, value))
        return;
    if (value.isText() && numberRow && looksLikeNumber(value)) {
        phraseInHand = numberRow;
        assignments.setMode(action, *numberRow, token);
        assignments.setNumber(action, *numberRow, value, value.text);
        return;
    }
    if (value.isText() && textRow && !isBound) {
        phraseInHand = textRow;
        assignments.set(*textRow, value.text, value);
        return;
    }
    lexer.goTo(start);
    ended = value.isEnd;
    fail(value.isText() ? value : token,
         fmt::format("behind \"{}\" comes {}", shown(token),
                     !numberRow ? "a text"
                     : isBound  ? "a number, start, end, before TEXT or after TEXT"
                                : "a number"));
}

bool RecipeStepReader::takeBound(const ParameterDescription& textRow, const ParameterDescription* numberRow,
                                 const RecipeToken& token) {
    const RecipeAction& action = *left.front();
    const std::string given = asciiOf(token);
    const auto* synonym = findSynonym(Kind::word, given);
    const std::string_view word = synonym ? synonym->meaning : std::string_view(given);
    const auto& sideRow = *action.row(textRow.sideKey);
    const auto side = std::ranges::find(sideRow.choices, word, &ParameterChoice::word);
    if (!word.empty() && side != sideRow.choices.end()) {
        next = Expected::text;
        const auto text = lexer.next();
        ended = text.isEnd;
        if (!text.isText())
            fail(token, fmt::format("behind \"{}\" comes a text", given));
        phraseInHand = &textRow;
        assignments.setMode(action, textRow, token);
        assignments.set(sideRow, side->value, token);
        assignments.set(textRow, text.text, text);
        return true;
    }
    if (word != "start" && word != "end")
        return false;
    phraseInHand = numberRow;
    assignments.setMode(action, *numberRow, token);
    assignments.setNumber(action, *numberRow, token, word == "start" ? u"0" : u"-0");
    return true;
}

/// Behind a phrase the word is that of the phrase, if it has such a one, else that of the step.
bool RecipeStepReader::takeLoneWord(std::string_view word, const RecipeToken& token) {
    if (isSlash && word == "case")
        return false;
    if (!scope.empty())
        if (const auto* own = left.front()->word(word, scope); own && isAllowed(*own)) {
            loneWords.push_back({own->word, scope, token});
            return true;
        }
    const RecipeAction::Word* found = nullptr;
    for (const auto* action : left)
        if (const auto* own = action->word(word, ""))
            found = own;
    if (!found)
        return false;
    loneWords.push_back({found->word, "", token});
    std::erase_if(left, [&](const auto* action) { return action->word(word, "") == nullptr; });
    return true;
}

/// A word of a phrase may be of use behind one of its forms alone.
bool RecipeStepReader::isAllowed(const RecipeAction::Word& word) const {
    return phraseInHand &&
           (word.row->shownWhenKey.empty() || (word.row->shownWhenKey == phraseInHand->shownWhenKey &&
                                               word.row->shownWhenValue == phraseInHand->shownWhenValue));
}

bool RecipeStepReader::takeOption(const RecipeToken& token) {
    const std::size_t equals = token.text.find(u'=');
    if (equals >= token.bareUnits)
        return false;
    const std::string given = text::toUtf8(token.text.substr(0, equals));
    const auto rowOf = [&](std::string_view name) {
        const ParameterDescription* found = nullptr;
        for (const auto* action : left)
            if (const auto* row = action->option(name))
                found = row;
        return found;
    };
    const auto* row = rowOf(given);
    if (const auto* synonym = row ? nullptr : findSynonym(Kind::option, given))
        row = rowOf(synonym->meaning);
    if (!row)
        return false;
    options.push_back({row->word, "", token});
    std::erase_if(left, [&](const auto* action) { return action->option(row->word) == nullptr; });
    return true;
}

bool RecipeStepReader::mayTakeText() const {
    if (isByName || left.empty())
        return false;
    const auto& rows = left.front()->texts();
    return texts.size() < rows.size() ? rows[texts.size()]->isText()
                                      : texts.size() == rows.size() && !left.front()->dateRows().empty();
}

bool RecipeStepReader::hasNoWordsYet() const {
    return loneWords.empty() && options.empty() && !place && scope.empty();
}

bool RecipeStepReader::takeOptionalText(const RecipeToken& token) {
    const auto& rows = left.front()->texts();
    const bool isNumber = texts.size() < rows.size() && !rows[texts.size()]->isText();
    if (isNumber ? !looksLikeNumber(token) : !mayTakeText())
        return false;
    if (!token.isQuoted && !hasNoWordsYet() && !isNumber)
        return false;
    texts.push_back(token);
    return true;
}

// ---- the parameters

void RecipeStepReader::assignTexts(const RecipeAction& action) {
    const auto& rows = action.texts();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i == rows.size()) {
            assignments.setDate(action, texts[i]);
        } else if (rows[i]->isText()) {
            assignments.set(*rows[i], texts[i].text, texts[i]);
        } else {
            if (texts[i].isQuoted)
                fail(texts[i], "a number stands without quotes");
            assignments.setNumber(action, *rows[i], texts[i], texts[i].text);
        }
    }
}

void RecipeStepReader::assignWords(const RecipeAction& action) {
    for (const auto& said : loneWords) {
        const auto* word = action.word(said.word, said.scope);
        if (!word)
            fail(said.token, fmt::format("\"{}\" does not go with the words behind it", shown(said.token)));
        assignments.set(*word->row, word->value, said.token);
    }
    for (const auto& said : options) {
        const auto* row = action.option(said.word);
        if (!row)
            fail(said.token, fmt::format("\"{}=\" does not go with the words behind it", said.word));
        assignments.setOption(action, *row, said.token);
    }
    if (usual)
        assignments.setUsual(*usual->row, usual->value);
}

/// Of phrases that are forms of the same thing, one must be there unless it may be left out.
void RecipeStepReader::checkPhrases(const RecipeAction& action) {
    for (const auto& row : action.rows()) {
        if (row.form != RecipeForm::phrase || row.mayBeLeftOut || row.shownWhenKey.empty())
            continue;
        const auto* const mode = action.row(row.shownWhenKey);
        if (!assignments.has(*mode))
            fail(verb, fmt::format("\"{}\" needs an end", shown(verb)),
                 "to NUMBER, to before TEXT, to after TEXT or for NUMBER");
    }
}

const RecipeAction& RecipeStepReader::chosenAction() {
    if (place)
        return *left.front();
    const auto whole = std::ranges::find(left, Place::wholeName,
                                         [](const auto* each) { return each->entry().recipe.place; });
    if (whole != left.end())
        return **whole;
    std::string places;
    for (const auto* action : left)
        places += fmt::format("{}{}", places.empty() ? "" : ", ", formOf(action->entry().recipe.place));
    fail(verb, fmt::format("\"{}\" needs a place", shown(verb)),
         (left.size() == 1 ? "it is " : "it is one of ") + places);
}

/// Other tools write groups so.
void RecipeStepReader::noteOnReplacement() {
    const std::u16string_view replacement = texts.back().text;
    for (std::size_t i = 0; i + 1 < replacement.size(); ++i)
        if (replacement[i] == u'\\' && replacement[++i] >= u'1' && replacement[i] <= u'9') {
            const char digit = static_cast<char>(replacement[i]);
            remarks.push_back(
                {texts.back().place, fmt::format("\"\\{0}\" is the digit {0}", digit), "groups are $1"});
            return;
        }
}

PropertyDictionary RecipeStepReader::finish() {
    PropertyDictionary parameters;
    std::string name = storedName;
    if (!left.empty()) {
        const RecipeAction& action = isByName ? *left.front() : chosenAction();
        left = {&action};
        if (!isByName) {
            assignTexts(action);
            checkPhrases(action);
        }
        assignWords(action);
        name = action.entry().name;
        parameters = action.defaults();
        assignments.moveInto(parameters);
        if (action.entry().recipe.slash == 's' && !isByName)
            noteOnReplacement();
    } else if (!loneWords.empty()) {
        parameters.emplace("active", 0);
    }
    for (auto& [key, value] : stored)
        parameters.insert_or_assign(std::move(key), std::move(value));
    PropertyDictionary step; // lists of initial values are copied
    step.emplace("action name", text::fromUtf8(name));
    step.emplace("action parameter list", std::move(parameters));
    return step;
}

// ---- what may come, and what was meant

std::vector<RecipeCandidate> RecipeStepReader::candidates() const {
    std::vector<RecipeCandidate> all;
    const auto add = [&](std::string word, std::string about) {
        if (std::ranges::find(all, word, &RecipeCandidate::word) == all.end())
            all.push_back({std::move(word), std::move(about)});
    };
    const auto isSaid = [&](const ParameterDescription& row) {
        const auto isOf = [&](const Said& said) {
            const auto* word = left.front()->word(said.word, said.scope);
            return word && word->row->key == row.key;
        };
        return assignments.hasKey(row.key) || std::ranges::any_of(loneWords, isOf);
    };
    // A word that the phrase in hand has too would be taken for its own.
    const auto mayStand = [&](const RecipeAction& action, const RecipeAction::Word& word) {
        if (!word.row->scope.empty())
            return word.row->scope == scope && isAllowed(word);
        const auto* own = scope.empty() ? nullptr : action.word(word.word, scope);
        return !(own && isAllowed(*own)) && !(isSlash && word.word == "case");
    };
    if (next == Expected::verb) {
        for (const auto verbOf : vocabulary.verbs())
            add(std::string(verbOf), std::string(vocabulary.withVerb(verbOf).front()->entry().label));
        return all;
    }
    if (next == Expected::bound)
        return {{"start", ""}, {"end", ""}, {"before", ""}, {"after", ""}};
    if (isByName)
        return {{"off", ""}};
    if (!place)
        for (const auto* action : left)
            if (const auto word = wordOf(action->entry().recipe.place); !word.empty())
                add(std::string(word), std::string(action->entry().label));
    for (const auto* action : left) {
        for (const auto& row : action->rows())
            if (row.form == RecipeForm::phrase && wordOf(action->entry().recipe.place) != row.word &&
                !isSaid(*action->row(row.shownWhenKey)))
                add(std::string(row.word), std::string(row.label));
        for (const auto& word : action->words())
            if (mayStand(*action, word) && !isSaid(*word.row))
                add(std::string(word.word), aboutOf(word));
        for (const auto& row : action->rows())
            if (row.form == RecipeForm::option &&
                std::ranges::find(options, row.word, &Said::word) == options.end())
                add(std::string(row.word) + "=", std::string(row.label));
    }
    return all;
}

void RecipeStepReader::failWord(const RecipeToken& token) const {
    const std::string word = shown(token);
    if (isByName)
        fail(token, fmt::format("behind a stored name comes KEY:=VALUE, not \"{}\"", word));
    const auto* const textBefore = texts.empty() ? nullptr : &texts.back();
    if (textBefore && !isSlash && !place && !asciiOf(*textBefore).empty()) {
        const std::string last = asciiOf(*textBefore);
        const auto* synonym = findSynonym(Kind::word, last);
        for (const Place each :
             {Place::start, Place::end, Place::position, Place::beforeText, Place::afterText})
            if (hasPlace(each) && wordOf(each) == (synonym ? synonym->meaning : std::string_view(last)))
                fail(token, "the text stands before the place",
                     fmt::format("{} TEXT {}", shown(verb), formOf(each)));
    }
    if (word == "all")
        fail(token, fmt::format("\"{}\" does not know \"all\"", shown(verb)),
             std::string(recipe::hintOnAll()));
    std::string hint = token.isQuoted ? std::string() : recipe::suggestion(word, candidates());
    fail(token,
         token.isQuoted ? fmt::format("\"{}\" takes no further text", shown(verb))
                        : fmt::format("\"{}\" does not know \"{}\"", shown(verb), word),
         std::move(hint));
}

} // namespace tavrin
