#include "tags/MixedTokenFieldLogic.h"

#include "support/text/Text.h"
#include "tags/TagLibraryHelper.h"

#include <algorithm>
#include <iterator>

namespace tavrin {

namespace {

/// The entries found in a text. Plain text that waits for a tag is one object throughout: an entry made of
/// it goes on changing with it, in every place where it stands.
class Entries {
  public:
    void addPending() {
        if (!pending.empty())
            places.push_back(Place{true, {}});
    }
    void add(std::u16string entry) {
        if (!entry.empty())
            places.push_back(Place{false, std::move(entry)});
    }

    [[nodiscard]] std::vector<std::u16string> finished() && {
        std::vector<std::u16string> entries;
        for (Place& place : places)
            entries.push_back(place.isPending ? pending : std::move(place.text));
        return entries;
    }

    std::u16string pending;

  private:
    struct Place {
        bool isPending;
        std::u16string text;
    };
    std::vector<Place> places;
};

} // namespace

bool MixedTokenFieldLogic::isToken(std::u16string_view entry) const { return library.isValidTag(entry); }

std::size_t MixedTokenFieldLogic::tokenIndexFromInsertionPoint(const Tokens& value,
                                                               std::size_t location) const {
    std::size_t start = 0;
    for (std::size_t index = 0; index < value.size(); ++index) {
        const std::size_t end = start + (isToken(value[index]) ? 1 : value[index].size());
        if (start <= location && location <= end)
            return index;
        start = end;
    }
    return 0;
}

std::optional<MixedTokenFieldLogic::Tokens>
MixedTokenFieldLogic::controlTextDidChange(const Tokens& value, std::size_t location) const {
    if (value.empty())
        return std::nullopt;
    const std::size_t index = tokenIndexFromInsertionPoint(value, location);
    Tokens entries = recognised(value[index]);
    if (entries.empty())
        return std::nullopt;
    Tokens changed(value.begin(), value.begin() + static_cast<std::ptrdiff_t>(index));
    std::ranges::move(entries, std::back_inserter(changed));
    changed.insert(changed.end(), value.begin() + static_cast<std::ptrdiff_t>(index) + 1, value.end());
    return changed;
}

MixedTokenFieldLogic::Tokens MixedTokenFieldLogic::recognised(std::u16string_view working) const {
    Entries entries;
    std::size_t offset = 0;
    std::optional<std::size_t> opening; // the last "<" of the section from the offset on
    std::size_t at = 0;
    for (const std::u16string_view sequence : text::composedSequences(working)) {
        if (sequence == u"<")
            opening = at;
        at += sequence.size();
        if (sequence != u">")
            continue;
        if (!opening) {
            entries.pending.append(working, offset, at - 1 - offset); // the bracket itself goes
        } else if (const auto candidate = working.substr(*opening, at - *opening); isToken(candidate)) {
            entries.addPending();
            entries.add(std::u16string(working.substr(offset, *opening - offset)));
            entries.add(std::u16string(candidate));
            entries.pending.clear();
        } else {
            entries.pending.append(working, offset, at - offset);
        }
        offset = at;
        opening.reset();
    }
    entries.pending.append(working, offset);
    entries.addPending();
    return std::move(entries).finished();
}

// ---- the pattern

std::optional<std::vector<std::u16string>>
StringToTokenArrayTransformer::transformedValue(const std::optional<std::u16string>& pattern) {
    if (!pattern || pattern->empty())
        return std::nullopt;
    return TagLibraryHelper::decomposeStringIntoTokenArray(*pattern);
}

std::u16string StringToTokenArrayTransformer::reverseTransformedValue(
    const std::optional<std::vector<std::u16string>>& tokens) {
    std::u16string pattern;
    if (tokens)
        for (const std::u16string& token : *tokens)
            pattern += token;
    return pattern;
}

} // namespace tavrin
