#include "presentation/dialogs/PresetDialog.h"

namespace tavrin {

void PresetDialog::saveAsPreset(QWidget*, const WindowServices&) {}
void PresetDialog::edit(QWidget*, const WindowServices&, std::size_t) {}

} // namespace tavrin
