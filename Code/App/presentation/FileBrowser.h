#pragma once

#include <functional>
#include <string>

namespace tavrin {

/// The desktop's file manager and its programs. Paths are bytes. Returns at once; failures are beeped where
/// nobody is told of them.
struct FileBrowser {
    /// Shows the item in its folder (org.freedesktop.FileManager1), else opens the folder.
    static void reveal(const std::string& path);
    /// Opens a file with the program that the desktop has for it.
    static void open(const std::string& path);
    /// The same, and calls on the main thread if there is none, or it can't be started.
    static void open(const std::string& path, const std::function<void()>& failed);
};

} // namespace tavrin
