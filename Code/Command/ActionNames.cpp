#include "ActionNames.h"

#include "ExitStatus.h"
#include "documents/recipe/RecipeWords.h"
#include "support/text/TextUnits.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <optional>

namespace tavrin::actionNames {

namespace {

using Kind = RecipeSynonym::Kind;

/// Where a name, or a label, is the text.
template <typename Same> const ActionEntry* entryWith(Same isSame) {
    const auto& entries = allActions();
    for (const auto member : {&ActionEntry::name, &ActionEntry::label})
        if (const auto found = std::ranges::find_if(
                entries, [&](const ActionEntry& entry) { return isSame(entry.*member); });
            found != entries.end())
            return &*found;
    return nullptr;
}

std::optional<Place> placeOf(std::string_view word) {
    const RecipeSynonym* synonym = findSynonym(Kind::word, word);
    for (const Place place : {Place::start, Place::end, Place::position, Place::beforeText, Place::afterText})
        if (wordOf(place) == (synonym ? synonym->meaning : word))
            return place;
    return std::nullopt;
}

/// Of a verb in small letters, or of verb and place.
std::vector<const ActionEntry*> entriesOf(std::string_view words) {
    const std::size_t blank = words.find(' ');
    std::string_view verb = words.substr(0, blank);
    std::optional<Place> place;
    if (const RecipeSynonym* synonym = findSynonym(Kind::verb, verb)) {
        verb = synonym->meaning;
        if (synonym->place != Place::wholeName)
            place = synonym->place;
    }
    if (blank != words.npos) {
        const std::optional<Place> said = placeOf(words.substr(blank + 1));
        if (!said || place)
            return {};
        place = said;
    }
    std::vector<const ActionEntry*> found;
    for (const ActionEntry& entry : allActions())
        if (entry.recipe.verb == verb && (!place || entry.recipe.place == *place))
            found.push_back(&entry);
    return found;
}

} // namespace

std::string inSmallLetters(std::string_view text) {
    std::string small(text);
    std::ranges::transform(small, small.begin(), text::units::asciiLower<char>);
    return small;
}

std::vector<const ActionEntry*> meantBy(std::string_view text) {
    if (const ActionEntry* entry = entryWith([&](std::string_view name) { return name == text; }))
        return {entry};
    const std::string small = inSmallLetters(text);
    if (const ActionEntry* entry =
            entryWith([&](std::string_view name) { return inSmallLetters(name) == small; }))
        return {entry};
    return entriesOf(small);
}

const ActionEntry& onlyOneMeantBy(std::string_view text) {
    const std::vector<const ActionEntry*> meant = meantBy(text);
    if (meant.empty())
        throw UsageError(complaintAbout(text));
    if (meant.size() == 1)
        return *meant.front();
    std::vector<std::string> choices;
    for (const ActionEntry* entry : meant) {
        if (entry->recipe.place == Place::wholeName)
            return *entry;
        choices.push_back(fmt::format("\"{}\"", recipeWords(*entry)));
    }
    throw UsageError(
        fmt::format("\"{}\" is the verb of several actions: {}", text, fmt::join(choices, ", ")));
}

std::string complaintAbout(std::string_view text) {
    std::vector<std::string_view> known;
    for (const ActionEntry& entry : allActions())
        known.insert(known.end(), {entry.name, entry.label, entry.recipe.verb});
    for (const RecipeSynonym& synonym : recipeSynonyms())
        if (synonym.kind == Kind::verb)
            known.push_back(synonym.synonym);
    if (const std::string_view nearest = nearestWord(text, known); !nearest.empty())
        return fmt::format("there is no action \"{}\"; did you mean \"{}\"?", text, nearest);
    return fmt::format("there is no action \"{}\"; \"tvrn actions\" lists them", text);
}

std::string recipeWords(const ActionEntry& entry) {
    const std::string_view place = wordOf(entry.recipe.place);
    return fmt::format("{}{}{}", entry.recipe.verb, place.empty() ? "" : " ", place);
}

} // namespace tavrin::actionNames
