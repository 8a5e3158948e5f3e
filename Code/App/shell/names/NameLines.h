#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrin {

/// How names become lines of a text that people edit, and lines names: what the file of an editor and the
/// page in a window have in common. Pure.
namespace nameLines {

/// Why a name can't stand in a line as it is, in words that follow "it"; empty where it can.
[[nodiscard]] std::string_view hindrance(std::u16string_view name);
/// What keeps bytes from being the name of anything in a folder, as a part of a sentence; empty for nothing.
/// Absent bytes are those of a text that holds half a character.
[[nodiscard]] std::string_view wrongWith(const std::optional<std::string>& bytes);

/// So many lines are edited at most.
inline constexpr std::size_t mostLines = 250000;

/// No line is made longer than this, in UTF-16 code units: no path has as many, and a page with millions in
/// one line cannot be used.
inline constexpr std::size_t longestLine = 4096;

/// Why a name can't be edited in a line, where one can only be shown in its place.
enum class Lock { none, lineBreak, controlCharacter, reorderingMark, notUtf8 };

/// A name as a line of a page on which each row has one, with signs for what a line can't hold.
struct Line {
    std::u16string text;
    Lock lock = Lock::none;
};
[[nodiscard]] Line lineOf(std::u16string_view name);

/// What is pasted, line by line. Carriage returns and separators of paragraphs end lines too, a last empty
/// line is none, and what no line may hold is left away. A line that is too long loses all but its first unit
/// too many.
struct Pasted {
    std::vector<std::u16string> lines; ///< as many as are wanted
    std::size_t count = 0;             ///< of all there are
    std::size_t changed = 0;           ///< lines from which something was left away
};
/// A text of any length; at most so many lines are made of it.
[[nodiscard]] Pasted pasted(std::u16string_view text, std::size_t wanted);

/// Lines as the bytes of a file, UTF-8.
[[nodiscard]] std::string fileOf(std::span<const std::u16string> lines);

/// What has become of such a file.
struct Edited {
    enum class Fault { none, notUtf8, otherCount };
    Fault fault = Fault::none;
    std::size_t count = 0;                                          ///< of its lines
    std::vector<std::pair<std::size_t, std::u16string>> lines = {}; ///< by number: those that were changed
    std::size_t changed = 0; ///< lines from which something was left away
};
/// A byte order mark, and the form in which an editor has put accented letters, change nothing.
[[nodiscard]] Edited edited(std::string_view file, std::span<const std::u16string> written);

/// Columns of lines one below the other, counted as in DisplayText: the units of a line that lie from one
/// column up to another, as start and length; whole composed characters, told by where they begin. Absent
/// where the line ends before the first of them; a line that ends there has the empty stretch at its end.
struct Stretch {
    std::size_t start = 0;
    std::size_t length = 0;
};
[[nodiscard]] std::optional<Stretch> stretchBetween(std::u16string_view line, std::size_t from,
                                                    std::size_t to);

} // namespace nameLines

} // namespace tavrin
