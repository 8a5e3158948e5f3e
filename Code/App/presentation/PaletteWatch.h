#pragma once

#include <QObject>
#include <functional>

class QLabel;

namespace tavrin {

/// Calls back after each change of the application's palette, as long as the owner lives. For widgets with
/// colours of their own: Qt tells only windows of the change, and passes on only colours that are not set.
/// Main thread.
void whenPaletteChanges(QObject* owner, const std::function<void()>& call);
/// Has the links of a label take the colour of each new palette, as they do when its text is set.
void recolourLinks(QLabel& label);

} // namespace tavrin
