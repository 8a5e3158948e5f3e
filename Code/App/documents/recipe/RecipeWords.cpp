#include "documents/recipe/RecipeWords.h"

#include "support/text/TextUnits.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace tavrin {

namespace {

using Kind = RecipeSynonym::Kind;

constexpr RecipeSynonym synonyms[]{
    {Kind::verb, "sub", "replace"},
    {Kind::verb, "substitute", "replace"},
    {Kind::verb, "change", "replace"},
    {Kind::verb, "regexp", "regex"},
    {Kind::verb, "delete", "remove"},
    {Kind::verb, "del", "remove"},
    {Kind::verb, "delete-chars", "remove-chars"},
    {Kind::verb, "chop", "drop"},
    {Kind::verb, "delete-range", "cut"},
    {Kind::verb, "remove-range", "cut"},
    {Kind::verb, "only", "keep"},
    {Kind::verb, "insert", "add"},
    {Kind::verb, "prefix", "add", Place::start},
    {Kind::verb, "prepend", "add", Place::start},
    {Kind::verb, "suffix", "add", Place::end},
    {Kind::verb, "append", "add", Place::end},
    {Kind::verb, "call", "set"},
    {Kind::verb, "lowercase", "lower"},
    {Kind::verb, "downcase", "lower"},
    {Kind::verb, "lc", "lower"},
    {Kind::verb, "uppercase", "upper"},
    {Kind::verb, "upcase", "upper"},
    {Kind::verb, "uc", "upper"},
    {Kind::verb, "deaccent", "unaccent"},
    {Kind::verb, "unaccented", "unaccent"},
    {Kind::verb, "capitalize", "sentence"},
    {Kind::verb, "proper", "title"},
    {Kind::verb, "titlecase", "title"},
    {Kind::verb, "uncamel", "split-camel"},
    {Kind::verb, "count", "number"},
    {Kind::verb, "counter", "number"},
    {Kind::verb, "index", "number"},
    {Kind::verb, "num", "number"},
    {Kind::verb, "alphabet", "letters"},
    {Kind::verb, "alpha", "letters"},
    {Kind::verb, "numeral", "roman"},
    {Kind::verb, "exif", "tag"},
    {Kind::verb, "metadata", "tag"},
    {Kind::verb, "dimensions", "size"},
    {Kind::verb, "dim", "size"},
    {Kind::verb, "mp3", "music"},
    {Kind::verb, "id3", "music"},
    {Kind::verb, "parent", "folder"},
    {Kind::verb, "folders", "path"},
    {Kind::verb, "from-list", "list"},
    {Kind::verb, "truncate", "shorten"},
    {Kind::verb, "8.3", "dos"},
    {Kind::verb, "ntfs", "windows"},
    {Kind::verb, "os9", "mac"},
    {Kind::word, "first", "1st"},
    {Kind::word, "second", "2nd"},
    {Kind::word, "third", "3rd"},
    {Kind::word, "fourth", "4th"},
    {Kind::word, "fifth", "5th"},
    {Kind::word, "sixth", "6th"},
    {Kind::word, "second-last", "2nd-last"},
    {Kind::word, "third-last", "3rd-last"},
    {Kind::word, "fourth-last", "4th-last"},
    {Kind::word, "fifth-last", "5th-last"},
    {Kind::word, "sixth-last", "6th-last"},
    {Kind::word, "each", "every"},
    {Kind::word, "stem", "name"},
    {Kind::word, "base", "name"},
    {Kind::word, "full", "whole"},
    {Kind::word, "both", "whole"},
    {Kind::word, "extension", "ext"},
    {Kind::word, "front", "start"},
    {Kind::word, "begin", "start"},
    {Kind::word, "beginning", "start"},
    {Kind::word, "back", "end"},
    {Kind::word, "case-sensitive", "case"},
    {Kind::word, "match-case", "case"},
    {Kind::word, "exif", "taken"},
    {Kind::word, "shot", "taken"},
    {Kind::word, "mtime", "modified"},
    {Kind::word, "btime", "created"},
    {Kind::word, "birth", "created"},
    {Kind::word, "today", "now"},
    {Kind::word, "each-folder", "per-folder"},
    {Kind::word, "disabled", "off"},
    {Kind::order, "oldest", "modified"},
    {Kind::order, "newest", "-modified"},
    {Kind::order, "smallest", "size"},
    {Kind::order, "largest", "-size"},
    {Kind::order, "shuffle", "random"},
    {Kind::order, "az", "name"},
    {Kind::order, "za", "-name"},
    {Kind::option, "sort", "order"},
    {Kind::option, "by", "order"},
    {Kind::option, "start", "from"},
    {Kind::option, "begin", "from"},
    {Kind::option, "increment", "step"},
    {Kind::option, "pad", "digits"},
    {Kind::option, "padding", "digits"},
    {Kind::option, "front", "prefix"},
    {Kind::option, "behind", "suffix"},
    {Kind::option, "separator", "between"},
    {Kind::option, "sep", "between"},
    {Kind::option, "depth", "levels"},
    {Kind::option, "folders", "levels"},
    {Kind::option, "order2", "then"},
    {Kind::option, "letters", "width"},
};

constexpr std::array<std::string_view, 6> placeWords{"", "start", "end", "at", "before", "after"};

bool standsAlone(const ParameterDescription& row) {
    return row.form == RecipeForm::alone || row.form == RecipeForm::part || row.form == RecipeForm::mark ||
           row.form == RecipeForm::off;
}

auto sortKey(const RecipeAction::Word& each) { return std::tie(each.word, each.row->scope); }

} // namespace

std::span<const RecipeSynonym> recipeSynonyms() { return synonyms; }

const RecipeSynonym* findSynonym(Kind kind, std::string_view word) {
    const auto* const found = std::ranges::find_if(
        synonyms, [&](const RecipeSynonym& each) { return each.kind == kind && each.synonym == word; });
    return found == std::end(synonyms) ? nullptr : found;
}

std::string_view wordOf(Place place) { return placeWords.at(static_cast<std::size_t>(place)); }

std::int32_t valueOfMark(const ParameterDescription& row) {
    const auto whenNew = std::get<std::int32_t>(row.whenNew);
    const auto other = std::ranges::find_if(
        row.choices, [&](const ParameterChoice& choice) { return choice.value != whenNew; });
    return other->value;
}

std::string_view wordOf(const ParameterDescription& row, const ParameterChoice& choice) {
    if (!standsAlone(row) || row.word.empty())
        return choice.word;
    return choice.value == valueOfMark(row) ? row.word : std::string_view();
}

// ---- an action

RecipeAction::RecipeAction(const ActionEntry& entry)
    : catalogued(&entry), action(entry.make()), whenNew(action->defaultParameters()) {
    for (const auto& row : rows()) {
        if (standsAlone(row) && !row.word.empty())
            ownWords.push_back({row.word, &row, valueOfMark(row)});
        else if (standsAlone(row))
            for (const auto& choice : row.choices)
                ownWords.push_back({choice.word, &row, choice.value});
        else if (row.form == RecipeForm::date)
            ownDateRows.push_back(&row);
        else if (row.form == RecipeForm::first)
            ownTexts.push_back(&row);
    }
    required = static_cast<std::size_t>(
        std::ranges::count(ownTexts, false, [](const auto* row) { return row->mayBeLeftOut; }));
    std::ranges::sort(ownWords, {}, sortKey);
}

const ParameterDescription* RecipeAction::row(std::string_view key) const {
    const auto found = std::ranges::find(rows(), key, &ParameterDescription::key);
    return found == rows().end() ? nullptr : &*found;
}

PropertyDictionary RecipeAction::normalForm(const PropertyDictionary& list) const {
    auto normal = action->presentForm(list);
    std::erase_if(normal, [](const auto& entry) {
        return BaseAction::internalKeyToExternalKey(entry.first) != entry.first;
    });
    normal.insert(whenNew.begin(), whenNew.end());
    return normal;
}

const RecipeAction::Word* RecipeAction::word(std::string_view text, std::string_view scope) const {
    const auto found = std::ranges::lower_bound(ownWords, std::tie(text, scope), {}, sortKey);
    return found != ownWords.end() && found->word == text && found->row->scope == scope ? &*found : nullptr;
}

const ParameterDescription* RecipeAction::option(std::string_view text) const {
    const auto found = std::ranges::find_if(rows(), [&](const ParameterDescription& row) {
        return row.form == RecipeForm::option && row.word == text;
    });
    return found == rows().end() ? nullptr : &*found;
}

bool RecipeAction::hasPhrase(std::string_view text) const {
    return std::ranges::any_of(rows(), [&](const ParameterDescription& row) {
        return row.form == RecipeForm::phrase && row.word == text;
    });
}

// ---- all of them

RecipeVocabulary::RecipeVocabulary(std::span<const ActionEntry> entries) {
    for (const auto& entry : entries) {
        entriesByVerb[entry.recipe.verb].push_back(&entry);
        if (entry.recipe.slash != 0)
            entriesByVerb[std::string_view(&entry.recipe.slash, 1)].push_back(&entry);
        entriesByName.emplace(entry.name, &entry);
    }
}

RecipeVocabulary::~RecipeVocabulary() = default;

const std::vector<const RecipeAction*>& RecipeVocabulary::withVerb(std::string_view verb) {
    static const std::vector<const RecipeAction*> none;
    const auto entries = entriesByVerb.find(verb);
    if (entries == entriesByVerb.end())
        return none;
    auto& actions = actionsByVerb[entries->first];
    if (actions.empty())
        for (const auto* entry : entries->second)
            actions.push_back(named(entry->name));
    return actions;
}

const RecipeAction* RecipeVocabulary::named(std::string_view name) {
    const auto entry = entriesByName.find(name);
    if (entry == entriesByName.end())
        return nullptr;
    auto& action = actionsByName[entry->first];
    if (!action)
        action = std::make_unique<RecipeAction>(*entry->second);
    return action.get();
}

std::vector<std::string_view> RecipeVocabulary::verbs() const {
    std::vector<std::string_view> all;
    for (const auto& [verb, entries] : entriesByVerb)
        if (verb.size() > 1)
            all.push_back(verb);
    return all;
}

// ---- what was meant

namespace {

/// The optimal string alignment distance.
std::size_t distanceBetween(std::string_view a, std::string_view b) {
    std::vector<std::size_t> beforeLast(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    const auto same = [&](std::size_t i, std::size_t j) {
        return text::units::asciiLower(a[i]) == text::units::asciiLower(b[j]);
    };
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::swap(beforeLast, last);
        std::swap(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same(i - 1, j - 1) ? 0 : 1)});
            if (i > 1 && j > 1 && same(i - 1, j - 2) && same(i - 2, j - 1))
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row[b.size()];
}

} // namespace

std::string_view nearestWord(std::string_view word, std::span<const std::string_view> candidates) {
    constexpr std::size_t longestWord = 40;
    if (word.size() > longestWord)
        return {};
    std::size_t most = std::clamp<std::size_t>(word.size() / 3, 1, 3);
    std::string_view nearest;
    for (const auto candidate : candidates) {
        if (const auto distance = distanceBetween(word, candidate);
            distance < most || (distance == most && nearest.empty())) {
            most = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

} // namespace tavrin
