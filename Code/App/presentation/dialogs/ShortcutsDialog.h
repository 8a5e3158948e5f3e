#pragma once

class QWidget;

namespace tavrin {

/// All keyboard shortcuts, read from the commands of the window.
struct ShortcutsDialog {
    static void open(QWidget* parent);
};

} // namespace tavrin
