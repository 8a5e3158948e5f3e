#pragma once

#include <string>

namespace tavrin {

/// The desktop's file manager and its programs. Paths are bytes. Returns at once; failures are beeped.
struct FileBrowser {
    /// Shows the item in its folder (org.freedesktop.FileManager1), else opens the folder.
    static void reveal(const std::string& path);
    /// Opens a file with the program that the desktop has for it.
    static void open(const std::string& path);
};

} // namespace tavrin
