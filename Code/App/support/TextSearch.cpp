#include "support/TextSearch.h"

#include "support/Text.h"
#include "support/TextSearchKey.h"
#include "support/TextSequences.h"
#include "support/TextUnits.h"

#include <algorithm>
#include <vector>

namespace tavrin {
namespace {

using text::units::asciiLower;

constexpr std::size_t none = std::u16string_view::npos;

/// ASCII without a carriage return: each unit is a sequence, and its key is at most its lower case.
bool isPlain(std::u16string_view name) {
    using text::units::everyUnit;
    return text::units::none(name, [](std::uint64_t word) {
        const std::uint64_t zeroIfReturn = word ^ everyUnit(u'\r');
        return (word & everyUnit(0xFF80)) |
               ((zeroIfReturn - everyUnit(1)) & ~zeroIfReturn & everyUnit(0x8000));
    });
}

bool lowersTo(const char16_t* units, std::u16string_view key) {
    for (std::size_t i = 0; i < key.size(); ++i)
        if (asciiLower(units[i]) != key[i])
            return false;
    return true;
}

std::size_t findIgnoringCase(std::u16string_view name, std::u16string_view key) {
    for (std::size_t at = 0; at + key.size() <= name.size(); ++at)
        if (lowersTo(name.data() + at, key))
            return at;
    return none;
}

std::size_t findLastIgnoringCase(std::u16string_view name, std::u16string_view key) {
    if (key.size() > name.size())
        return none;
    for (std::size_t at = name.size() - key.size() + 1; at-- > 0;)
        if (lowersTo(name.data() + at, key))
            return at;
    return none;
}

std::size_t findPlain(std::u16string_view name, std::u16string_view key, CaseSensitivity sensitivity) {
    return sensitivity == CaseSensitivity::sensitive ? name.find(key) : findIgnoringCase(name, key);
}

std::size_t findLastPlain(std::u16string_view name, std::u16string_view key, CaseSensitivity sensitivity) {
    return sensitivity == CaseSensitivity::sensitive ? name.rfind(key) : findLastIgnoringCase(name, key);
}

/// A name with its key and the map between them: edges[i] of the name lies at offsets[i] of the key.
class KeyedName {
  public:
    /// Does nothing for the name that it already holds: the occurrences of a text are sought one by one.
    void assign(std::u16string_view newName, CaseSensitivity sensitivity) {
        if (!edges.empty() && newName == name)
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

TextRange clamped(TextRange range, std::size_t size) {
    const std::size_t location = std::min(range.location, size);
    return {location, std::min(range.length, size - location)};
}

std::optional<TextRange> plainMatch(std::size_t at, TextRange range, std::size_t length) {
    if (at == none)
        return std::nullopt;
    return TextRange{range.location + at, length};
}

} // namespace

struct TextSearch::Impl {
    std::u16string text;
    std::u16string key;
    CaseSensitivity sensitivity = CaseSensitivity::sensitive;
    KeyedName lastName;
};

TextSearch::TextSearch() : TextSearch({}, CaseSensitivity::sensitive) {}

TextSearch::TextSearch(std::u16string_view text, CaseSensitivity sensitivity)
    : impl(std::make_unique<Impl>(
          Impl{std::u16string(text), text::searchKey(text, sensitivity), sensitivity, {}})) {}

TextSearch::TextSearch(TextSearch&&) noexcept = default;
TextSearch& TextSearch::operator=(TextSearch&&) noexcept = default;
TextSearch::~TextSearch() = default;

const std::u16string& TextSearch::text() const { return impl->text; }

std::optional<TextRange> TextSearch::first(std::u16string_view name, TextRange range) const {
    range = clamped(range, name.size());
    if (impl->key.empty() || range.length == 0)
        return std::nullopt;
    if (isPlain(name)) {
        const auto part = name.substr(range.location, range.length);
        return plainMatch(findPlain(part, impl->key, impl->sensitivity), range, impl->key.size());
    }
    impl->lastName.assign(name, impl->sensitivity);
    return impl->lastName.first(impl->key, range);
}

std::optional<TextRange> TextSearch::last(std::u16string_view name, TextRange range) const {
    range = clamped(range, name.size());
    if (impl->key.empty() || range.length == 0)
        return std::nullopt;
    if (isPlain(name)) {
        const auto part = name.substr(range.location, range.length);
        return plainMatch(findLastPlain(part, impl->key, impl->sensitivity), range, impl->key.size());
    }
    impl->lastName.assign(name, impl->sensitivity);
    return impl->lastName.last(impl->key, range);
}

bool contains(std::u16string_view text, std::u16string_view part, CaseSensitivity sensitivity) {
    if (part.empty())
        return false;
    if (sensitivity == CaseSensitivity::sensitive && isPlain(text) && text::isAscii(part))
        return text.find(part) != none;
    return TextSearch(part, sensitivity).first(text).has_value();
}

} // namespace tavrin
