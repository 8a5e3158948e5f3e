#include "presentation/settings/ActionSearch.h"

#include "actions/ActionList.h"
#include "actions/BaseRenameAction.h"
#include "support/text/Text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace tavrin {

namespace {

/// What people say for what a label or a category says.
constexpr std::array<std::pair<std::u16string_view, std::u16string_view>, 20> synonyms{{
    {u"number", u"counter enumerate sequence index count digits"},
    {u"case", u"capital capitals capitalize title upper lower"},
    {u"uppercase", u"capitals caps big"},
    {u"lowercase", u"small"},
    {u"remove", u"strip trim delete cut erase"},
    {u"accents", u"diacritics umlauts marks ascii"},
    {u"date", u"exif taken camera time day month year"},
    {u"tag", u"exif iptc metadata camera gps"},
    {u"start", u"front beginning prefix"},
    {u"first", u"front beginning prefix"},
    {u"end", u"suffix append back"},
    {u"last", u"suffix back"},
    {u"windows", u"fat ntfs illegal forbidden characters"},
    {u"music", u"id3 song mp3 album artist track"},
    {u"regular", u"regex regexp expression pattern"},
    {u"replace", u"find substitute search change swap"},
    {u"list", u"csv file table import"},
    {u"folder", u"directory parent path"},
    {u"shorten", u"truncate length cut"},
    {u"image", u"picture photo pixels width height dimensions"},
}};

std::vector<std::u16string> wordsOf(const std::u16string& text) {
    std::vector<std::u16string> words;
    std::u16string word;
    for (const char16_t unit : text + u" ") {
        if (!text::isWhitespaceOrNewline(unit) && !text::isPunctuation(unit)) {
            word += unit;
        } else if (!word.empty()) {
            words.push_back(std::exchange(word, {}));
        }
    }
    return words;
}

std::u16string folded(const std::u16string& text) { return text::caseFolded(text::withoutDiacritics(text)); }

std::u16string synonymsFor(const std::u16string& text) {
    std::u16string all;
    for (const std::u16string& word : wordsOf(text))
        for (const auto& [key, others] : synonyms)
            if (word.starts_with(key))
                all.append(u" ").append(others);
    return all;
}

bool beginsWord(const std::u16string& text, const std::u16string& part) {
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1))
        if (at == 0 || !text::isLetter(text[at - 1]))
            return true;
    return false;
}

bool contains(const std::u16string& text, const std::u16string& part) { return text.find(part) != text.npos; }

std::u16string exampleOf(const ActionEntry& entry) {
    const auto& examples = entry.examples;
    return examples.empty() ? u"" : examples.front().before + u" \u2192 " + examples.front().after;
}

} // namespace

ActionSearch::ActionSearch(const ActionList& catalogue) {
    std::vector<std::u16string> categories = catalogue.categoryPopUpMenuItems();
    std::erase(categories, u"");
    for (const ActionEntry& entry : allActions()) {
        const auto index = catalogue.popUpMenuIndexForName(entry.name);
        if (!index)
            continue;
        const auto category = catalogue.translateActionIndexToCategoryIndex(*index).value_or(0);
        const Hit hit{*index, catalogue.popUpMenuItems().at(static_cast<std::size_t>(*index)),
                      categories.at(static_cast<std::size_t>(category)), exampleOf(entry)};
        const std::u16string label = folded(hit.label);
        const std::u16string categoryName = folded(hit.category);
        entries.push_back({hit, label, synonymsFor(label + u" " + categoryName), categoryName});
    }
    std::ranges::sort(entries, {}, [](const Entry& entry) { return entry.hit.menuIndex; });
}

std::vector<ActionSearch::Hit> ActionSearch::find(const std::u16string& typed, std::size_t limit) const {
    const std::vector<std::u16string> words = wordsOf(folded(typed));
    // The worst of its words decides where an action stands; an action that lacks one is no hit.
    const auto rankOf = [&](const Entry& entry) {
        std::optional<int> worst = 0;
        for (const std::u16string& word : words) {
            const int rank = beginsWord(entry.label, word)      ? 0
                             : contains(entry.label, word)      ? 1
                             : beginsWord(entry.synonyms, word) ? 2
                             : contains(entry.category, word)   ? 3
                                                                : 4;
            if (rank == 4)
                return std::optional<int>();
            worst = std::max(*worst, rank);
        }
        return worst;
    };
    std::vector<std::pair<int, const Entry*>> ranked;
    for (const Entry& entry : entries)
        if (const auto rank = rankOf(entry))
            ranked.emplace_back(*rank, &entry);
    std::ranges::stable_sort(ranked, {}, &std::pair<int, const Entry*>::first);
    std::vector<Hit> hits;
    for (const auto& [rank, entry] : ranked)
        if (hits.size() < limit)
            hits.push_back(entry->hit);
    return hits;
}

} // namespace tavrin
