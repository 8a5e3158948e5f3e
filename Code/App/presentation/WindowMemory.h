#pragma once

#include "support/values/PropertyValue.h"

#include <QByteArray>

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

    /// What Qt gives to keep, as user defaults have it, and back; empty where nothing is stored.
    [[nodiscard]] static PropertyData dataOf(const QByteArray& bytes);
    [[nodiscard]] static QByteArray bytesUnder(const UserDefaults& defaults, const char* key);
};

} // namespace tavrin
