#pragma once

#include "store/rows/NameProblem.h"

#include <string>
#include <string_view>

namespace tavrin {

/// How names of rows become names in a folder. Pure.
namespace nameOnDisk {

/// What some file systems take in no name, beside control characters.
inline constexpr std::string_view foreignSigns = "\"*/:<>?\\|";

/// The bytes that a file with this name gets: every "/" a ":". False when no file can bear the name, or
/// when it holds a stray half of a character that stands for no byte of the current name (also bytes). An
/// exact name has been on the disk before, so that its halves are bytes.
[[nodiscard]] bool from(std::u16string_view finalName, std::string_view currentName, std::string& into,
                        bool isExact = false);
/// Why no file can bear the name; none where `from` gives one.
[[nodiscard]] NameProblem problemOf(std::u16string_view finalName, std::string_view currentName,
                                    bool isExact = false);
/// Whether these bytes name something in a folder, and nothing outside of it.
[[nodiscard]] bool isPossible(std::string_view name);
/// Whether two names are equal when case is ignored, and yet not the same.
[[nodiscard]] bool differsOnlyInCase(std::string_view a, std::string_view b);
/// The bytes as the user sees them: every ":" a "/".
[[nodiscard]] std::string shown(std::string_view name);

} // namespace nameOnDisk

} // namespace tavrin
