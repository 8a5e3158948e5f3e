#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
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

/// A name as a line of a page on which each row has one, shown in place of what a line can't hold.
struct Line {
    std::u16string text;
    /// Why it is not to be edited there, as a part of a sentence; empty where it may be.
    std::string_view locked;
};
[[nodiscard]] Line lineOf(std::u16string_view name);

/// What is pasted, line by line. Carriage returns and separators of paragraphs end lines too, a last empty
/// line is none, and what no line may hold is left away.
struct Pasted {
    std::vector<std::u16string> lines; ///< as many as are wanted
    std::size_t count = 0;             ///< of all there are
    std::size_t changed = 0;           ///< lines from which something was left away
};
/// A text of any length; at most so many lines are made of it.
[[nodiscard]] Pasted pasted(std::u16string_view text, std::size_t wanted);

} // namespace nameLines

} // namespace tavrin
