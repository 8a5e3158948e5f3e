#pragma once

#include "documents/recipe/RecipeAssignments.h"
#include "documents/recipe/RecipeSuggestions.h"
#include "documents/recipe/RecipeTokens.h"
#include "documents/recipe/RecipeWords.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Reads one step of a recipe: the verb, its texts, and words in any order, which narrow down the actions
/// that the verb may mean until one is left.
class RecipeStepReader {
  public:
    RecipeStepReader(RecipeLexer& source, RecipeVocabulary& words) : lexer(source), vocabulary(words) {}

    /// The step as chains are stored; the lexer then stands in front of the separator behind it. Throws
    /// RecipeMistake.
    [[nodiscard]] PropertyDictionary read();
    /// Takes all words of a step that may be unfinished, and then knows what may come. Throws RecipeMistake.
    void takeWords();
    /// What is no mistake, but probably not meant.
    [[nodiscard]] const std::vector<RecipeMistake>& notes() const { return remarks; }

    /// What the reader was about to take when it came to the end of the text.
    enum class Expected {
        verb,
        text,  ///< free text, or a number
        bound, ///< a place behind "from" and "to"
        word,
    };
    [[nodiscard]] Expected expected() const { return next; }
    /// Whether it came there without a mistake.
    [[nodiscard]] bool hasEnded() const { return ended; }
    /// The words that may come now, canonical ones alone.
    [[nodiscard]] std::vector<RecipeCandidate> candidates() const;
    /// The actions that are left; the first one tells the texts. Empty before the verb.
    [[nodiscard]] const std::vector<const RecipeAction*>& actions() const { return left; }
    /// Whether a text in quotes may come now; and one without.
    [[nodiscard]] bool mayTakeText() const;
    [[nodiscard]] bool mayTakeBareText() const { return mayTakeText() && hasNoWordsYet(); }

  private:
    struct Said {
        std::string_view word;  ///< as the table has it
        std::string_view scope; ///< the word of the phrase behind which it stands
        RecipeToken token;
    };
    struct StoredEntry {
        std::string key;
        PropertyValue value;
    };

    void takeSlash(const RecipeSlash& slash);
    void takeFlags(const RecipeSlash& slash);
    void takeVerb();
    void takeStoredName(const RecipeToken& token);
    void takeRequiredTexts();
    bool takeWord();
    bool takeStored();
    bool takeKnownWord(std::string_view word, const RecipeToken& token);
    void takePlace(Place place, const RecipeToken& token);
    void takePhrase(std::string_view word, const RecipeToken& token);
    bool takeBound(const ParameterDescription& textRow, const ParameterDescription* numberRow,
                   const RecipeToken& token);
    bool takeLoneWord(std::string_view word, const RecipeToken& token);
    bool takeOption(const RecipeToken& token);
    bool takeOptionalText(const RecipeToken& token);

    [[nodiscard]] bool hasNoWordsYet() const;
    [[nodiscard]] bool hasPlace(Place place) const;
    [[nodiscard]] bool narrow(bool (*fits)(const RecipeAction&, std::string_view), std::string_view word);
    [[nodiscard]] bool isAllowed(const RecipeAction::Word& word) const;
    [[nodiscard]] const RecipeAction& chosenAction();
    void assignTexts(const RecipeAction& action);
    void assignWords(const RecipeAction& action);
    void checkPhrases(const RecipeAction& action);
    void noteOnReplacement();
    [[nodiscard]] PropertyDictionary finish();

    [[noreturn]] void failWord(const RecipeToken& token) const;

    RecipeLexer& lexer;
    RecipeVocabulary& vocabulary;
    Expected next = Expected::verb;
    bool ended = false;
    RecipeToken verb;
    std::string verbWord;
    std::string storedName;
    bool isByName = false; ///< the step has the stored name in the place of a verb
    bool isSlash = false;
    std::vector<const RecipeAction*> group; ///< all of the verb
    std::vector<const RecipeAction*> left;  ///< those that have all words so far
    std::optional<Place> place;
    std::string_view scope;                             ///< the word of the phrase in hand
    const ParameterDescription* phraseInHand = nullptr; ///< its row
    std::vector<RecipeToken> texts;
    std::vector<Said> loneWords; ///< the rows are looked up when the action is known
    std::vector<Said> options;
    RecipeAssignments assignments;
    std::optional<RecipeAction::Word> usual; ///< of the sed-like form: holds unless a word says otherwise
    std::vector<StoredEntry> stored;
    std::vector<RecipeMistake> remarks;
};

} // namespace tavrin
