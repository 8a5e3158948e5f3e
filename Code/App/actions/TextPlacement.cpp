#include "actions/TextPlacement.h"

#include "support/text/Text.h"

namespace tavrin {

namespace {

constexpr std::int32_t firstModeFromEnd = 6;

std::int32_t findFromFront(std::u16string_view name, const TextSearch& search, std::int32_t wanted) {
    std::size_t start = 0;
    for (std::int32_t found = 0; start < name.size(); ++found) {
        const auto match = search.first(name, {start, name.size() - start});
        if (!match)
            break;
        if (found == wanted)
            return static_cast<std::int32_t>(match->location);
        start = match->end();
    }
    return -1;
}

std::int32_t findFromEnd(std::u16string_view name, const TextSearch& search, std::int32_t wanted) {
    std::size_t end = name.size();
    for (std::int32_t found = 0; end > 0; ++found) {
        const auto match = search.last(name, {0, end});
        if (!match)
            break;
        if (found == wanted)
            return static_cast<std::int32_t>(match->location);
        end = match->location;
    }
    return -1;
}

} // namespace

std::int32_t findInsertionPointIn(std::u16string_view name, const TextSearch& search, std::int32_t mode) {
    if (mode < 0)
        return -1;
    return mode < firstModeFromEnd ? findFromFront(name, search, mode)
                                   : findFromEnd(name, search, mode - firstModeFromEnd);
}

void TextPlacement::addParametersTo(BaseAction& action, std::string_view modeKey,
                                    std::string_view ignoreCaseKey) {
    constexpr auto part = PanelSection::placement;
    if (place == Place::position) {
        action.addParameter(
            numberParameter("position", "At", 0).between(0, 9999).in(part).phrase("at").signedBy(modeKey),
            position);
        action.addParameter(choiceParameter(modeKey, "Counted", positionModeChoices(), 0).beside("position"),
                            mode);
    } else if (isBesideText()) {
        const auto word = place == Place::beforeText ? "before" : "after";
        action.addParameter(textParameter("searchTerm", "Text to find").in(part).phrase(word), searchTerm);
        action.addParameter(
            choiceParameter(modeKey, "Which one", occurrenceChoices(), 0).in(part).alone().behind(word),
            mode);
        action.addParameter(
            checkboxParameter(ignoreCaseKey, "Ignore case", 1).in(part).alone("case").behind(word),
            ignoreCase);
    }
}

void TextPlacement::prepareParameters() {
    if (isBesideText())
        search = TextSearch(text::precomposed(searchTerm), caseSensitivity(ignoreCase));
}

std::optional<std::size_t> TextPlacement::indexIn(std::u16string_view name) const {
    if (place == Place::position) {
        const auto offset = static_cast<std::uint32_t>(position); // negative: greater than any length
        if (offset > name.size())
            return std::nullopt;
        return mode == 0 ? offset : name.size() - offset;
    }
    const auto location = findInsertionPointIn(name, search, mode);
    if (location < 0)
        return std::nullopt;
    // Behind the text is its own length, also where the match has another, and then perhaps past the end.
    const auto index =
        static_cast<std::size_t>(location) + (place == Place::afterText ? search.text().size() : 0);
    return index <= name.size() ? std::optional(index) : std::nullopt;
}

void TextPlacement::putInside(std::u16string_view text, std::u16string_view name,
                              std::u16string& result) const {
    if (const auto index = indexIn(name))
        result.append(name, 0, *index).append(text).append(name, *index);
    else
        result += name;
}

} // namespace tavrin
