#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// A word of a command line for sh, which takes all but the quote itself as it stands.
[[nodiscard]] std::string quotedForShell(std::string_view word);
/// The same in characters alone, for a clipboard: bytes that are not UTF-8 are written by printf.
[[nodiscard]] std::string quotedForShellAsText(std::string_view word);
/// The simple commands of a line or of several, each as its words, unquoted (POSIX.1-2017, Shell Command
/// Language, 2.2 and 2.3). Nothing is expanded, and what follows a redirection counts as a command of its
/// own. Absent where a quote has no end.
[[nodiscard]] std::optional<std::vector<std::vector<std::string>>> shellCommands(std::string_view lines);

/// The two rules by which texts stand in desktop entries (Desktop Entry Specification 1.5). Bytes.
namespace desktopEntry {

/// A value in the form of its file.
[[nodiscard]] std::string escaped(std::string_view value);
[[nodiscard]] std::string unescaped(std::string_view value);
/// An argument of a command line, as it stands before the escapes of its file.
[[nodiscard]] std::string quotedArgument(std::string_view argument);

} // namespace desktopEntry

} // namespace tavrin
