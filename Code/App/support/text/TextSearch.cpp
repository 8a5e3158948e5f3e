#include "support/text/TextSearch.h"

#include "support/text/Text.h"
#include "support/text/TextSearchKey.h"
#include "support/text/TextUnits.h"

#include <algorithm>
#include <bit>
#include <vector>

namespace tavrin {
namespace {

namespace units = text::units;

/// Search unit by unit. `part` is never empty; the lowered ones take `part` in lower case and compare it with
/// the lower case of `text`, all of whose characters lie below U+0100. Inline, since the compiler heeds the
/// word: these are the innermost loops of most steps.
namespace literal {

constexpr std::size_t none = std::u16string_view::npos;

inline bool startsLowered(std::u16string_view text, std::u16string_view part) {
    if (text.size() < part.size())
        return false;
    for (std::size_t i = 0; i < part.size(); ++i)
        if (units::latin1Lower(text[i]) != part[i])
            return false;
    return true;
}

inline bool starts(std::u16string_view text, std::u16string_view part) {
    return units::same(text.substr(0, part.size()), part);
}

/// The first place with the unit `first` or `other` from which `matches` holds.
template <typename Matches>
std::size_t scan(std::u16string_view text, std::u16string_view part, char16_t other, Matches matches) {
    const std::uint64_t firsts = units::everyUnit(part[0]);
    const std::uint64_t others = units::everyUnit(other);
    std::size_t at = 0;
    for (; at + 4 <= text.size(); at += 4) {
        const std::uint64_t word = units::load(text.data() + at);
        std::uint64_t candidates = units::zeroUnits(word ^ firsts) | units::zeroUnits(word ^ others);
        for (; candidates != 0; candidates &= candidates - 1) {
            const std::size_t start = at + static_cast<std::size_t>(std::countr_zero(candidates)) / 16;
            if (matches(text.substr(start), part))
                return start;
        }
    }
    for (; at < text.size(); ++at)
        if (matches(text.substr(at), part))
            return at;
    return none;
}

inline std::size_t find(std::u16string_view text, std::u16string_view part) {
    return scan(text, part, part[0], starts);
}

inline std::size_t findLowered(std::u16string_view text, std::u16string_view part) {
    const auto capital = static_cast<char16_t>(part[0] - 0x20);
    const bool hasCapital = part[0] >= 0x20 && units::latin1Lower(capital) == part[0];
    return scan(text, part, hasCapital ? capital : part[0], startsLowered);
}

inline std::size_t findLast(std::u16string_view text, std::u16string_view part) {
    for (std::size_t at = text.size(); at-- > 0;)
        if (text[at] == part[0] && starts(text.substr(at), part))
            return at;
    return none;
}

inline std::size_t findLastLowered(std::u16string_view text, std::u16string_view part) {
    for (std::size_t at = text.size(); at-- > 0;)
        if (startsLowered(text.substr(at), part))
            return at;
    return none;
}

} // namespace literal

using literal::none;

/// Whether the search key of a name, composed, is the name itself or its lower case unit by unit: characters
/// below U+0100 without CR and, ignoring case, without those that fold to something else.
bool isSimple(std::u16string_view name, CaseSensitivity sensitivity) {
    const auto has = [](std::uint64_t word, char16_t unit) {
        return units::zeroUnits(word ^ units::everyUnit(unit));
    };
    if (sensitivity == CaseSensitivity::sensitive)
        return units::none(
            name, [&](std::uint64_t word) { return (word & units::everyUnit(0xFF00)) | has(word, u'\r'); });
    return units::none(name, [&](std::uint64_t word) {
        return (word & units::everyUnit(0xFF00)) | has(word, u'\r') | has(word, u'ß') | has(word, u'µ');
    });
}

/// A name with its key and the map between them: edges[i] of the name lies at offsets[i] of the key.
class KeyedName {
  public:
    /// Does nothing for the name that it already holds: the occurrences of a text are sought one by one.
    void assign(std::u16string_view newName, CaseSensitivity sensitivity) {
        if (!edges.empty() && units::same(newName, name))
            return;
        name = newName;
        text::sequenceEdges(name, edges);
        key.clear();
        offsets.assign(1, 0);
        for (std::size_t i = 1; i < edges.size(); ++i) {
            const std::u16string_view all = name;
            text::appendSequenceKey(all.substr(edges[i - 1], edges[i] - edges[i - 1]), sensitivity, key);
            offsets.push_back(key.size());
        }
    }

    std::optional<TextRange> first(std::u16string_view sought, TextRange range) const {
        const Stretch stretch = keyStretch(range);
        for (std::size_t at = key.find(sought, stretch.begin);
             at != none && at + sought.size() <= stretch.end; at = key.find(sought, at + 1))
            if (const auto match = matchAt(at, sought.size()))
                return match;
        return std::nullopt;
    }

    std::optional<TextRange> last(std::u16string_view sought, TextRange range) const {
        const Stretch stretch = keyStretch(range);
        if (stretch.end < stretch.begin + sought.size())
            return std::nullopt;
        for (std::size_t at = key.rfind(sought, stretch.end - sought.size());
             at != none && at >= stretch.begin; at = key.rfind(sought, at - 1)) {
            if (const auto match = matchAt(at, sought.size()))
                return match;
            if (at == 0)
                break;
        }
        return std::nullopt;
    }

  private:
    struct Stretch {
        std::size_t begin;
        std::size_t end;
    };

    /// What of the key belongs to sequences that lie in the range as a whole.
    Stretch keyStretch(TextRange range) const {
        const auto begin = std::lower_bound(edges.begin(), edges.end(), range.location);
        const auto end = std::prev(std::upper_bound(edges.begin(), edges.end(), range.end()));
        if (begin >= end)
            return {0, 0};
        return {offsets[static_cast<std::size_t>(begin - edges.begin())],
                offsets[static_cast<std::size_t>(end - edges.begin())]};
    }

    std::optional<TextRange> matchAt(std::size_t offset, std::size_t length) const {
        const auto begin = std::lower_bound(offsets.begin(), offsets.end(), offset);
        const auto end = std::lower_bound(begin, offsets.end(), offset + length);
        if (*begin != offset || *end != offset + length)
            return std::nullopt;
        const std::size_t start = edges[static_cast<std::size_t>(begin - offsets.begin())];
        return TextRange{start, edges[static_cast<std::size_t>(end - offsets.begin())] - start};
    }

    std::u16string name;
    std::u16string key;
    std::vector<std::size_t> edges;
    std::vector<std::size_t> offsets;
};

struct Forwards {
    static constexpr auto find = literal::find;
    static constexpr auto findLowered = literal::findLowered;
    static auto findKeyed(const KeyedName& name, std::u16string_view key, TextRange range) {
        return name.first(key, range);
    }
};

struct Backwards {
    static constexpr auto find = literal::findLast;
    static constexpr auto findLowered = literal::findLastLowered;
    static auto findKeyed(const KeyedName& name, std::u16string_view key, TextRange range) {
        return name.last(key, range);
    }
};

} // namespace

struct TextSearch::Impl {
    std::u16string text;
    std::u16string key;
    std::u16string composedKey;
    CaseSensitivity sensitivity = CaseSensitivity::sensitive;
    /// The same where no character below U+0100 folds to what is sought, but by its own lower case: "ß" folds
    /// to "ss", and "µ" out of ASCII.
    CaseSensitivity sensitivityToFolding = CaseSensitivity::sensitive;
    KeyedName lastName;
    std::u16string buffer;

    /// Where all texts are in form C, a stretch matches exactly if it is literally the text, so names whose
    /// composed key goes unit by unit need no map of offsets.
    template <typename Direction> std::optional<TextRange> match(std::u16string_view name, TextRange range) {
        const std::size_t location = std::min(range.location, name.size());
        range = {location, std::min(range.length, name.size() - location)};
        if (key.empty() || range.length == 0)
            return std::nullopt;
        const auto literal = [&](std::size_t found) {
            return found == none ? std::nullopt
                                 : std::optional(TextRange{location + found, composedKey.size()});
        };
        if (isSimple(name, sensitivityToFolding)) {
            const auto stretch = name.substr(location, range.length);
            return literal(sensitivity == CaseSensitivity::sensitive
                               ? Direction::find(stretch, composedKey)
                               : Direction::findLowered(stretch, composedKey));
        }
        if (text::unitwiseKey(name, sensitivity, buffer))
            return literal(
                Direction::find(std::u16string_view(buffer).substr(location, range.length), composedKey));
        lastName.assign(name, sensitivity);
        return Direction::findKeyed(lastName, key, range);
    }
};

TextSearch::TextSearch() : TextSearch({}, CaseSensitivity::sensitive) {}

TextSearch::TextSearch(std::u16string_view text, CaseSensitivity sensitivity)
    : impl(std::make_unique<Impl>()) {
    impl->text = text;
    impl->key = text::searchKey(text, sensitivity);
    impl->composedKey = text::precomposed(impl->key);
    impl->sensitivity = sensitivity;
    const bool isPlain = units::allAscii(impl->key) && impl->key.find(u"ss") == literal::none &&
                         impl->key.find(u'\r') == literal::none;
    impl->sensitivityToFolding = isPlain ? CaseSensitivity::sensitive : sensitivity;
}

TextSearch::TextSearch(TextSearch&&) noexcept = default;
TextSearch& TextSearch::operator=(TextSearch&&) noexcept = default;
TextSearch::~TextSearch() = default;

const std::u16string& TextSearch::text() const { return impl->text; }

std::optional<TextRange> TextSearch::first(std::u16string_view name, TextRange range) const {
    return impl->match<Forwards>(name, range);
}

std::optional<TextRange> TextSearch::last(std::u16string_view name, TextRange range) const {
    return impl->match<Backwards>(name, range);
}

bool contains(std::u16string_view text, std::u16string_view part, CaseSensitivity sensitivity) {
    if (part.empty())
        return false;
    // No character below U+0100 is another's canonical equivalent, so case alone can make them match.
    if (sensitivity == CaseSensitivity::sensitive && isSimple(text, sensitivity) &&
        units::allBelowFirstCombining(part))
        return literal::find(text, part) != none;
    return TextSearch(part, sensitivity).first(text).has_value();
}

} // namespace tavrin
