#include "presentation/dialogs/ShortcutsDialog.h"

namespace tavrin {

void ShortcutsDialog::open(QWidget*) {}

} // namespace tavrin
