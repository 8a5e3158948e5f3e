#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// The two rules by which texts stand in desktop entries (Desktop Entry Specification 1.5). Bytes.
struct DesktopEntryText {
    /// A value in the form of its file.
    [[nodiscard]] static std::string escaped(std::string_view value);
    [[nodiscard]] static std::string unescaped(std::string_view value);
    /// An argument of a command line, as it stands before the escapes of its file.
    [[nodiscard]] static std::string quotedArgument(std::string_view argument);
};

} // namespace tavrin
