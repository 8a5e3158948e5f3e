#include "presentation/dialogs/PreferencesWindow.h"

namespace tavrin {

void PreferencesWindow::open(QWidget*, const WindowServices&) {}

} // namespace tavrin
