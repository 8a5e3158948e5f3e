#include "presentation/dialogs/OrganizePresetsDialog.h"

namespace tavrin {

void OrganizePresetsDialog::open(QWidget*, const WindowServices&) {}

} // namespace tavrin
