#include "actions/CatalogueFixture.h"
#include "actions/CompositeRenameAction.h"
#include "common/RandomChains.h"
#include "common/Recipes.h"
#include "documents/RecipeFile.h"
#include "documents/recipe/RecipeCompletion.h"
#include "documents/recipe/RecipeText.h"
#include "documents/recipe/RecipeTokens.h"
#include "documents/recipe/RecipeWords.h"
#include "platform/desktop/Quoting.h"
#include "platform/processes/ChildProcess.h"
#include "support/text/DisplayText.h"

#include <cmath>

namespace tavrin::test {

namespace {

/// The chain as it counts, in a form that tells all types apart.
std::u16string normalForm(const PropertyDictionary& chain) {
    std::u16string form;
    RecipeVocabulary vocabulary;
    for (const auto& each : *find(chain, "composite actions array")->asArray()) {
        const auto& step = *each.asDictionary();
        const auto& name = *find(step, "action name")->asText();
        const auto& parameters = *find(step, "action parameter list")->asDictionary();
        const auto* action = vocabulary.named(text::toUtf8(name));
        form += name + recipe::literal(action ? action->normalForm(parameters) : parameters);
    }
    return form;
}

std::string messageOf(const RecipeText::Remark& remark) {
    return fmt::format("{}:{}: {}", remark.line, remark.column, remark.sentence());
}

/// Absent, with a failure, where the text is no recipe.
std::optional<PropertyDictionary> chainOf(std::u16string_view recipe) {
    auto result = RecipeText::read(recipe);
    if (auto* reading = std::get_if<RecipeText::Reading>(&result))
        return std::move(reading->flatParameterList);
    ADD_FAILURE() << text::toUtf8(recipe) << ": " << messageOf(std::get<RecipeText::Remark>(result));
    return std::nullopt;
}

/// The places of all tokens of a canonical text.
std::vector<TextRange> tokensOf(std::u16string_view recipe) {
    std::vector<TextRange> tokens;
    RecipeLexer lexer(recipe);
    for (bool isStart = true;;) {
        const auto start = lexer.position();
        bool isSeparator = false;
        if (isStart && lexer.slash()) {
            // One token.
        } else if (lexer.storedKey()) {
            (void)lexer.literal();
        } else {
            const auto token = lexer.next();
            if (token.isEnd)
                return tokens;
            isSeparator = token.isSeparator;
        }
        isStart = isSeparator;
        tokens.push_back({start, lexer.position() - start});
    }
}

/// The same recipe as people lay it out.
std::u16string spread(std::u16string_view recipe) {
    std::u16string text = u"#!/usr/bin/tvrn -xf\n;;";
    for (const auto& token : tokensOf(recipe)) {
        const auto part = recipe.substr(token.location, token.length);
        text += part == u" |" ? u" # why | not\n\n" : u"\t " + std::u16string(part) + u"  ";
    }
    return text + u"\r\n#";
}

TEST(RecipeLaws, ChainsComeBackFromTheirText) {
    RandomChains chains(1);
    for (int i = 0; i < 4000; ++i) {
        const auto chain = chains.next();
        const auto text = RecipeText::write(chain);
        SCOPED_TRACE(text::toUtf8(text));
        const auto again = chainOf(text);
        ASSERT_TRUE(again);
        ASSERT_EQ(text::toUtf8(normalForm(*again)), text::toUtf8(normalForm(chain)));
        ASSERT_EQ(RecipeText::write(*again), text);
        const auto laidOut = chainOf(spread(text));
        ASSERT_TRUE(laidOut);
        ASSERT_EQ(RecipeText::write(*laidOut), text);
        // It shows nothing that is not there, and passes wherever quotes are left alone.
        ASSERT_EQ(text::fromBytes(text::toUtf8(text)), text);
        ASSERT_EQ(display::visible(text), text::toUtf8(text));
        ASSERT_EQ(text.find_first_of(u"\n\u00a0\u200b\u2028\ufeff"), text.npos);
    }
}

TEST(RecipeLaws, TextsPassThroughAShell) {
    RandomChains chains(5);
    std::string line = "printf '%s\\n'";
    std::string expected;
    for (int i = 0; i < 200; ++i) {
        const auto text = text::toUtf8(RecipeText::write(chains.next()));
        line += ' ' + quotedForShell(text);
        expected += text + '\n';
    }
    ChildProcess::Request request;
    request.arguments = {"/bin/sh", "-c", line};
    EXPECT_EQ(ChildProcess::run(request).output, expected);
}

TEST(RecipeLaws, CanonicalTextSaysNothingTwice) {
    RandomChains chains(2);
    for (int i = 0; i < 1000; ++i) {
        const auto text = RecipeText::write(chains.next());
        for (const auto& token : tokensOf(text)) {
            auto shorter = text;
            shorter.erase(token.location, token.length);
            const auto result = RecipeText::read(shorter);
            if (const auto* reading = std::get_if<RecipeText::Reading>(&result)) {
                ASSERT_NE(RecipeText::write(reading->flatParameterList), text) << text::toUtf8(text) << "\n"
                                                                               << text::toUtf8(shorter);
            }
        }
    }
}

TEST(RecipeLaws, DamagedTextIsAChainOrAMistakeWithItsPlace) {
    RandomChains chains(3);
    for (int i = 0; i < 4000; ++i) {
        auto text = spread(RecipeText::write(chains.next()));
        for (auto changes = 1 + chains.below(3); changes > 0; --changes) {
            const auto at = chains.below(text.size());
            text.replace(at, chains.below(4), chains.text());
        }
        SCOPED_TRACE(text::toUtf8(text));
        const auto result = RecipeText::read(text);
        if (const auto* reading = std::get_if<RecipeText::Reading>(&result)) {
            const auto printed = RecipeText::write(reading->flatParameterList);
            const auto again = chainOf(printed);
            ASSERT_TRUE(again);
            ASSERT_EQ(RecipeText::write(*again), printed);
            continue;
        }
        const auto& remark = std::get<RecipeText::Remark>(result);
        ASSERT_FALSE(remark.message.empty());
        ASSERT_LE(remark.line, 1U + static_cast<std::size_t>(std::ranges::count(text, u'\n')));
        const auto width = display::columns(text::fromUtf8(remark.excerpt));
        ASSERT_LE(remark.column + remark.length, width + 2);
        ASSERT_EQ(display::visible(remark.sentence()), remark.sentence());
    }
}

using RecipeNames = CatalogueFixture;

/// What the chain makes of some names, unless it is refused.
std::u16string namesBy(const RecipeFile::Result& recipe) {
    if (std::holds_alternative<RecipeError>(recipe))
        return u"refused";
    CompositeRenameAction chain(ActionUse::privateRun);
    chain.setFlatParameterList(std::get<Recipe>(recipe).flatParameterList);
    std::u16string names;
    for (const auto* name : {u"IMG_4021 (1).JPG", u"a/b - B\u0301c.tar.gz", u"start", u"\xDC80 1.\"x\""})
        names += run(chain, name, 3) + u'\n';
    return names;
}

TEST_F(RecipeNames, AreThoseOfTheStoredList) {
    RandomChains chains(4);
    for (int i = 0; i < 10'000; ++i) {
        const auto chain = chains.next();
        const auto text = RecipeText::write(chain);
        if (text.find(u" now") != text.npos)
            continue; // it passes meanwhile
        ASSERT_EQ(namesBy(RecipeFile::fromText(text)), namesBy(RecipeFile::fromPropertyList(chain)))
            << text::toUtf8(text);
    }
}

/// What a reader must be able to rely on to tell words apart.
void expectLawsOfWords(const RecipeAction& action) {
    SCOPED_TRACE(action.entry().name);
    std::set<std::pair<std::string, std::string_view>> words;
    const auto expectNew = [&](const std::string& word, std::string_view scope) {
        EXPECT_TRUE(!word.empty() && words.emplace(word, scope).second) << word << " behind " << scope;
        EXPECT_EQ(findSynonym(RecipeSynonym::Kind::word, word), nullptr) << word;
    };
    for (const auto& word : action.words())
        expectNew(std::string(word.word), word.row->scope);
    if (const auto place = wordOf(action.entry().recipe.place); !place.empty())
        expectNew(std::string(place), "");
    std::set<std::string_view> told;
    for (const auto& row : action.rows()) {
        const bool hasForm = row.form != RecipeForm::stored;
        if (row.form == RecipeForm::option)
            expectNew(std::string(row.word) + "=", "");
        EXPECT_EQ(findSynonym(RecipeSynonym::Kind::option, row.word), nullptr) << row.word;
        if (row.form == RecipeForm::phrase)
            told.insert({row.signKey, row.sideKey, row.shownWhenKey});
        if (hasForm)
            told.insert({row.key, row.signKey});
        for (const auto& choice : row.choices)
            EXPECT_TRUE(row.form == RecipeForm::stored || !row.word.empty() || !choice.word.empty() ||
                        row.form == RecipeForm::date)
                << row.key;
    }
    for (const auto& row : action.rows())
        EXPECT_TRUE(told.contains(row.key) || row.isHidden || row.kind == ParameterKind::status) << row.key;
}

TEST(RecipeLaws, WordsTellActionsAndParametersApart) {
    RecipeVocabulary vocabulary;
    std::set<std::string_view> verbs{"preview", "rename",  "edit", "recipe",  "history", "undo",
                                     "redo",    "actions", "tags", "presets", "help"};
    for (const auto verb : vocabulary.verbs()) {
        EXPECT_TRUE(verbs.insert(verb).second) << verb;
        std::set<Place> places;
        const auto& actions = vocabulary.withVerb(verb);
        for (const auto* action : actions) {
            EXPECT_TRUE(places.insert(action->entry().recipe.place).second) << action->entry().name;
            EXPECT_EQ(action->requiredTexts(), actions.front()->requiredTexts());
            EXPECT_EQ(action->texts().size(), actions.front()->texts().size());
            expectLawsOfWords(*action);
        }
    }
    std::set<std::pair<RecipeSynonym::Kind, std::string_view>> synonyms;
    for (const auto& each : recipeSynonyms()) {
        EXPECT_TRUE(synonyms.emplace(each.kind, each.synonym).second) << each.synonym;
        EXPECT_TRUE(each.kind != RecipeSynonym::Kind::verb || verbs.insert(each.synonym).second)
            << each.synonym;
    }
}

/// Whether the text is the beginning of a recipe, or one: it becomes one with what may be missing.
bool leadsToARecipe(std::u16string_view text) {
    for (const std::u16string_view value :
         {u"", u"/b/", u"\"", u"name", u"width", u"blanks", u"1", u" \"x\"", u" 1", u" start", u" before x"})
        for (const std::u16string_view rest : {u"", u" \"x\"", u" \"x\" \"x\"", u" end", u" \"x\" end",
                                               u" 1 end", u" after x", u" to 1", u" at 1"})
            if (std::holds_alternative<RecipeText::Reading>(
                    RecipeText::read(std::u16string(text).append(value).append(rest))))
                return true;
    return false;
}

TEST(RecipeLaws, WhatIsOfferedLeadsToARecipe) {
    RandomChains chains(4);
    RecipeVocabulary vocabulary;
    std::size_t count = 0;
    for (int i = 0; i < 100; ++i) {
        const auto text = RecipeText::write(chains.next());
        for (std::size_t length = 0; length <= text.size(); ++length) {
            const auto typed = std::u16string_view(text).substr(0, length);
            const auto damaged = std::u16string(typed) + chains.text();
            for (const auto& each : recipe::completions(damaged, vocabulary))
                ASSERT_TRUE(each.text.starts_with(damaged)) << text::toUtf8(each.text);
            for (const auto& each : recipe::completions(typed, vocabulary)) {
                ++count;
                ASSERT_TRUE(each.text.starts_with(typed)) << text::toUtf8(each.text);
                ASSERT_TRUE(leadsToARecipe(each.text)) << text::toUtf8(typed) << "\n"
                                                       << text::toUtf8(each.text);
            }
        }
    }
    EXPECT_GT(count, 2'000U);
}

TEST(RecipeLaws, WordsOfARecipeAreOffered) {
    const std::pair<std::u16string_view, std::string_view> cases[] = {
        // What is typed, and the beginnings of what it may become, each behind it.
        {u"spl", "it-camel"},
        {u"lower;s", "/ entence et horten ize ize-older plit-camel"},
        {u"add x a", "t fter"},
        {u"add x end ext of", "f"},
        {u"add x start e", "xt"},
        {u"add x end | trim e", "nd xt"},
        {u"move a ca", "se"},
        {u"move a case ca", ""},
        {u"move a before b ca", "se"},
        {u"move a before b case ca", ""},
        {u"replace 'a|b' c 2n", "d d-last"},
        {u"replace \"a b", ""},
        {u"replace a ", ""},
        {u"s/a/b/ ev", "ery"},
        {u"s/a/b/ ca", ""},
        {u"s/a/b", ""},
        {u"cut from b", "efore"},
        {u"cut from before b t", "o"},
        {u"number start st", "ep="},
        {u"number step=2 st", "art"},
        {u"number order=-m", "odified"},
        {u"number order=size order=", ""},
        {u"number digits=", ""},
        {u"date \"YYYYMMDD HH-mm-ss-", "SSS\""},
        {u"date YYYYMMD", "D"},
        {u"date 'MMMM D", "D, YYYY' D'"},
        {u"date s", "tart mall-am"},
        {u"tag \"<Song> <ImageW", "idth>"},
        {u"tag <ImageW", "idth>"},
        {u"tag start <ImageW", ""},
        {u"tag start \"<ImageW", "idth>"},
        {u"music <ImageW", ""},
        {u"music x \"<0T", "rackNum>"},
        {u"add \"<ImageW", ""},
        {u"\"Of tomorrow\" o", "ff"},
        {u"\"Of tomorrow\" x:=1", ""},
        {u"lower # ", ""},
        {u"lower\n", ""},
        {u"lower frist ", ""}};
    RecipeVocabulary vocabulary;
    for (const auto& [typed, expected] : cases) {
        std::string rests;
        for (const auto& each : recipe::completions(typed, vocabulary))
            (rests += rests.empty() ? "" : " ") += text::toUtf8(each.text.substr(typed.size()));
        EXPECT_EQ(rests, expected) << text::toUtf8(typed);
    }
}

// All 14,474 patterns of a date come back: no two read alike.
TEST(RecipeLaws, DatePatternsReadAsOneAlone) {
    RecipeVocabulary vocabulary;
    const auto* action = vocabulary.named("Rename to date");
    const auto choices = [&](std::size_t row) { return action->dateRows().at(row)->choices; };
    std::set<std::u16string> texts;
    std::size_t count = 0;
    for (const auto& date : choices(0))
        for (const auto& time : choices(1))
            for (const auto& order : choices(2)) {
                if ((date.value == 0 || time.value == 0) && order.value != 0)
                    continue;
                ++count;
                const auto text = RecipeText::write(chain({{"Rename to date",
                                                            {{"datePatternIndex", date.value},
                                                             {"timePatternIndex", time.value},
                                                             {"separatorMode", order.value},
                                                             {"version", 1}}}}));
                EXPECT_TRUE(texts.insert(text).second) << text::toUtf8(text);
                EXPECT_EQ(text.find(u":="), text.npos) << text::toUtf8(text);
                if (const auto again = chainOf(text)) {
                    EXPECT_EQ(RecipeText::write(*again), text);
                }
            }
    EXPECT_EQ(count, 14474U);
}

} // namespace

} // namespace tavrin::test
