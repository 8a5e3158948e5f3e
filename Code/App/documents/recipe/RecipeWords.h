#pragma once

#include "actions/ActionFamilies.h"
#include "actions/BaseRenameAction.h"
#include "actions/ParameterDescription.h"

#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// What stands for a word, but is never written.
struct RecipeSynonym {
    enum class Kind : std::uint8_t {
        verb,
        word,   ///< also of the choices of options
        option, ///< in front of "="
        order,  ///< a choice of an option alone
    };
    Kind kind;
    std::string_view synonym;
    std::string_view meaning;
    Place place = Place::wholeName; ///< of a verb that brings it along
};
[[nodiscard]] std::span<const RecipeSynonym> recipeSynonyms();
/// Null where there is none.
[[nodiscard]] const RecipeSynonym* findSynonym(RecipeSynonym::Kind kind, std::string_view word);

/// The word of a place; empty for the whole name, which has none.
[[nodiscard]] std::string_view wordOf(Place place);

/// An action as recipes see it.
class RecipeAction {
  public:
    explicit RecipeAction(const ActionEntry& entry);

    [[nodiscard]] const ActionEntry& entry() const { return *catalogued; }
    /// The parameter table.
    [[nodiscard]] std::span<const ParameterDescription> rows() const { return action->parameters(); }
    [[nodiscard]] const PropertyDictionary& defaults() const { return whenNew; }
    /// Null for a key that is in no row.
    [[nodiscard]] const ParameterDescription* row(std::string_view key) const;
    /// The stored list with all keys of today, and none of earlier forms.
    [[nodiscard]] PropertyDictionary normalForm(const PropertyDictionary& list) const;

    /// A word that stands by itself, with the value it gives its row.
    struct Word {
        std::string_view word;
        const ParameterDescription* row;
        std::int32_t value;
    };
    /// All of them, those of phrases too.
    [[nodiscard]] const std::vector<Word>& words() const { return ownWords; }
    /// The one behind the phrase of that word, or behind none where `scope` is empty. Null if there is none.
    [[nodiscard]] const Word* word(std::string_view text, std::string_view scope) const;
    /// Null if there is none.
    [[nodiscard]] const ParameterDescription* option(std::string_view text) const;
    [[nodiscard]] bool hasPhrase(std::string_view text) const;
    /// What stands behind the verb, in order; and the three of a date, if it has one.
    [[nodiscard]] const std::vector<const ParameterDescription*>& texts() const { return ownTexts; }
    [[nodiscard]] const std::vector<const ParameterDescription*>& dateRows() const { return ownDateRows; }
    [[nodiscard]] std::size_t requiredTexts() const { return required; }
    /// What its texts may hold; empty where they are taken as they are.
    [[nodiscard]] std::vector<std::u16string_view> tags() const { return action->knownTags(); }

  private:
    const ActionEntry* catalogued;
    std::unique_ptr<BaseRenameAction> action;
    PropertyDictionary whenNew;
    std::vector<Word> ownWords; ///< sorted
    std::vector<const ParameterDescription*> ownTexts;
    std::vector<const ParameterDescription*> ownDateRows;
    std::size_t required = 0;
};

/// The value that the lone word of a row with two values stands for: the one that a new step has not.
[[nodiscard]] std::int32_t valueOfMark(const ParameterDescription& row);
/// The word that stands for a choice of the row; empty where it needs none, or has none.
[[nodiscard]] std::string_view wordOf(const ParameterDescription& row, const ParameterChoice& choice);

/// The actions of the catalogue by their verbs and names. Actions are made when they are first asked for, so
/// one object belongs to one thread.
class RecipeVocabulary {
  public:
    explicit RecipeVocabulary(std::span<const ActionEntry> entries = allActions());
    ~RecipeVocabulary();

    /// The actions of a verb, or of the letter of a sed-like form; empty for a word that is no verb.
    [[nodiscard]] const std::vector<const RecipeAction*>& withVerb(std::string_view verb);
    /// Null for a name that is not in the catalogue.
    [[nodiscard]] const RecipeAction* named(std::string_view name);
    /// Sorted, without synonyms.
    [[nodiscard]] std::vector<std::string_view> verbs() const;

  private:
    std::map<std::string_view, std::vector<const ActionEntry*>> entriesByVerb;
    std::map<std::string_view, const ActionEntry*> entriesByName;
    std::map<std::string_view, std::vector<const RecipeAction*>> actionsByVerb;
    std::map<std::string_view, std::unique_ptr<RecipeAction>> actionsByName;
};

/// The candidate that is the least number of insertions, deletions, changes and swaps of neighbours away, if
/// that is at most a third of the word; empty if there is none. ASCII, whose case makes no difference.
[[nodiscard]] std::string_view nearestWord(std::string_view word,
                                           std::span<const std::string_view> candidates);

} // namespace tavrin
