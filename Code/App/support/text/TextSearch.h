#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// A stretch of a text in UTF-16 code units.
struct TextRange {
    std::size_t location = 0;
    std::size_t length = 0;
    [[nodiscard]] std::size_t end() const { return location + length; }
    bool operator==(const TextRange&) const = default;
};

/// Which matches of several are meant: 0 all, 1 to 6 the first to the sixth, 7 and above the last, the second
/// to last and so on. `index` counts from 0.
[[nodiscard]] constexpr bool isOccurrenceMeant(std::int32_t mode, std::int64_t index, std::int64_t count) {
    return mode == 0 || (mode <= 6 ? index == mode - 1 : index == count + 6 - std::int64_t{mode});
}

/// Whether a search ignores case.
enum class CaseSensitivity { sensitive, insensitive };

/// A prepared search for one text. It is no literal search: with k(x) the canonical decomposition of x (or,
/// ignoring case, of its full case folding), a match is a stretch of the name whose two ends are edges of
/// composed character sequences of the whole name, which lies in the search range, and for which
/// k(stretch) = k(text). So a match may differ in length from the text sought. An empty text finds nothing.
/// Prepare once per run, use per name; one object belongs to one thread.
class TextSearch {
  public:
    TextSearch();
    TextSearch(std::u16string_view text, CaseSensitivity sensitivity);
    TextSearch(TextSearch&&) noexcept;
    TextSearch& operator=(TextSearch&&) noexcept;
    ~TextSearch();

    /// The match in `range` of `name` with the smallest start.
    [[nodiscard]] std::optional<TextRange> first(std::u16string_view name, TextRange range) const;
    [[nodiscard]] std::optional<TextRange> first(std::u16string_view name) const {
        return first(name, {0, name.size()});
    }
    /// The match in `range` of `name` with the greatest start.
    [[nodiscard]] std::optional<TextRange> last(std::u16string_view name, TextRange range) const;

    /// The text sought, as given.
    [[nodiscard]] const std::u16string& text() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

/// Whether `text` holds `part`, by the rules of TextSearch.
bool contains(std::u16string_view text, std::u16string_view part, CaseSensitivity sensitivity);

} // namespace tavrin
