#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// A word of a command line for sh, which takes all but the quote itself as it stands.
[[nodiscard]] std::string quotedForShell(std::string_view word);

/// The two rules by which texts stand in desktop entries (Desktop Entry Specification 1.5). Bytes.
namespace desktopEntry {

/// A value in the form of its file.
[[nodiscard]] std::string escaped(std::string_view value);
[[nodiscard]] std::string unescaped(std::string_view value);
/// An argument of a command line, as it stands before the escapes of its file.
[[nodiscard]] std::string quotedArgument(std::string_view argument);

} // namespace desktopEntry

} // namespace tavrin
