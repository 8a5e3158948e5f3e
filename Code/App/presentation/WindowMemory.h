#pragma once

#include "support/values/PropertyValue.h"

#include <QByteArray>

namespace tavrin {

class MainWindow;
class UserDefaults;

/// What the main window keeps from one start to the next: place and size, the division between settings and
/// list, the widths of the list's columns. The width of the list of steps is the application's.
struct WindowMemory {
    static void remember(const MainWindow& window, UserDefaults& defaults);
    /// Does nothing the second time, and where nothing fitting is stored.
    static void restoreOnce(MainWindow& window, const UserDefaults& defaults);

    /// What Qt gives to keep, as user defaults have it, and back; empty where nothing is stored.
    [[nodiscard]] static PropertyData dataOf(const QByteArray& bytes);
    [[nodiscard]] static QByteArray bytesUnder(const UserDefaults& defaults, const char* key);
};

} // namespace tavrin
