#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// The texts of entries in the menus of file managers, each of which starts a program (an absolute path
/// without control characters, UTF-8) with the selected items.
struct MenuEntries {
    /// Every entry that is a file has this text in it.
    static constexpr std::string_view mark = "Written by Tavrin (net.calderwick.tavrin), which renews it.";

    static std::string dolphin(const std::string& program);
    static std::string nemo(const std::string& program);
    /// A script.
    static std::string nautilus(const std::string& program);
    /// A command line for sh in which "%F" stands for the items.
    static std::string thunarCommand(const std::string& program);
};

} // namespace tavrin
