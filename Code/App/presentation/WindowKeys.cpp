#include "presentation/WindowKeys.h"

#include <QAbstractSpinBox>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMainWindow>
#include <QShortcut>
#include <QTextEdit>
#include <algorithm>
#include <array>

namespace tavrin {

namespace {

bool isTextField(const QObject* object) {
    return qobject_cast<const QLineEdit*>(object) || qobject_cast<const QAbstractSpinBox*>(object) ||
           qobject_cast<const QTextEdit*>(object) || qobject_cast<const QComboBox*>(object);
}

/// Of the keys that the commands have too, those that are about text wherever text is typed.
bool isTextKey(const QKeyEvent& event) {
    constexpr std::array textKeys{QKeySequence::Undo, QKeySequence::Redo,  QKeySequence::Cut,
                                  QKeySequence::Copy, QKeySequence::Paste, QKeySequence::SelectAll};
    return std::ranges::any_of(textKeys, [&](auto key) { return event.matches(key); });
}

/// What Tab would come to first within a part, or what had the focus there last.
QWidget* firstIn(QWidget& part) {
    const auto takesFocus = [&](const QWidget* widget) {
        return (widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled() && widget->isVisibleTo(&part);
    };
    if (QWidget* last = part.focusWidget(); last && takesFocus(last))
        return last;
    if (takesFocus(&part))
        return &part;
    for (QWidget* next = part.nextInFocusChain(); next != &part; next = next->nextInFocusChain())
        if (part.isAncestorOf(next) && takesFocus(next))
            return next;
    return nullptr;
}

} // namespace

WindowKeys::WindowKeys(QMainWindow& mainWindow, std::vector<QWidget*> windowParts)
    : window(mainWindow), parts(std::move(windowParts)) {
    qApp->installEventFilter(this);
    for (const bool forward : {true, false}) {
        auto* key = new QShortcut(QKeySequence(forward ? "F6" : "Shift+F6"), &window);
        connect(key, &QShortcut::activated, this, [this, forward] { goToPart(forward); });
    }
}

WindowKeys::~WindowKeys() = default;

void WindowKeys::goToPart(bool forward) {
    const QWidget* focus = QApplication::focusWidget();
    const auto present = std::ranges::find_if(parts, [focus](const QWidget* part) {
        return focus && (part == focus || part->isAncestorOf(focus));
    });
    const auto count = static_cast<std::ptrdiff_t>(parts.size());
    std::ptrdiff_t place = present == parts.end() ? (forward ? -1 : count) : present - parts.begin();
    for (std::ptrdiff_t step = 0; step < count; ++step) {
        place = (place + (forward ? 1 : count - 1) + count) % count;
        QWidget* part = parts[static_cast<std::size_t>(place)];
        QWidget* target = part->isVisible() ? firstIn(*part) : nullptr;
        if (!target)
            continue;
        target->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return;
    }
}

bool WindowKeys::isCommand(int keys) const {
    return std::ranges::any_of(
        window.findChildren<QAction*>(Qt::FindDirectChildrenOnly), [keys](const QAction* action) {
            return action->isEnabled() && action->shortcuts().contains(QKeySequence(keys));
        });
}

bool WindowKeys::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::ShortcutOverride || !isTextField(watched) ||
        static_cast<QWidget*>(watched)->window() != &window)
        return false;
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool hasModifier = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    if (!hasModifier || isTextKey(key) || !isCommand(key.keyCombination().toCombined()))
        return false;
    event->ignore(); // so that it becomes the command's
    return true;
}

} // namespace tavrin
