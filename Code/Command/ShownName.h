#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// Ways to write something on a terminal: the sequence that begins it; empty for none.
struct Paint {
    std::string_view text;
    std::string_view blank; ///< for blanks, on which a colour of letters is not to be seen
};

namespace paint {
inline constexpr Paint plain{};
inline constexpr Paint removed{"\x1b[31m", "\x1b[41m"};
inline constexpr Paint added{"\x1b[32m", "\x1b[42m"};
inline constexpr Paint problem{"\x1b[33m", {}};
inline constexpr Paint heading{"\x1b[1m", {}};
inline constexpr std::string_view end = "\x1b[0m";

/// Appends the text in this way.
void append(std::string_view text, const Paint& how, std::string& into);
} // namespace paint

/// A name cut into composed characters that can be shown, with the columns of a terminal that they take.
class ShownName {
  public:
    /// Control characters become visible unless it is not for people.
    void set(std::u16string_view name, bool makeVisible = true);

    [[nodiscard]] std::size_t columns() const { return columnsBetween(0, characters.size()); }
    /// Keeps for both what they have in common at the beginning and at the end: what lies between differs.
    static void compare(ShownName& one, ShownName& other);
    /// Appends the name in at most so many columns, what differs in this way; answers how many it took. What
    /// is too much is left out in the middle, but not, if it can be helped, where the difference is.
    std::size_t append(std::size_t mostColumns, const Paint& difference, std::string& into) const;

  private:
    struct Character {
        std::size_t end = 0;     ///< in `text`
        std::size_t columns = 0; ///< of all up to its end
    };
    /// From a character up to another.
    struct Range {
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    [[nodiscard]] std::size_t columnsBetween(std::size_t begin, std::size_t end) const;
    [[nodiscard]] std::string_view between(std::size_t begin, std::size_t end) const;
    [[nodiscard]] Range leftOut(std::size_t mostColumns) const;
    /// The smallest range from `begin` on with at least so many columns.
    [[nodiscard]] Range rangeFrom(std::size_t begin, std::size_t wantedColumns) const;
    [[nodiscard]] bool meetsDifference(const Range& range) const {
        return range.begin < different.end && different.begin < range.end;
    }
    void appendPart(const Range& part, const Paint& difference, std::string& into) const;

    std::string text;
    std::vector<Character> characters;
    Range different;
};

} // namespace tavrin
