#pragma once

namespace tavrin {

class MainWindow;
class UserDefaults;

/// What the main window keeps from one start to the next: place and size, and the widths of the list's
/// columns. The widths of its panes are the application's.
struct WindowMemory {
    static void remember(const MainWindow& window, UserDefaults& defaults);
    /// Puts the window where it was, or, where nothing fitting is stored, where it belongs at first. Does
    /// nothing the second time.
    static void restoreOnce(MainWindow& window, const UserDefaults& defaults);
};

} // namespace tavrin
