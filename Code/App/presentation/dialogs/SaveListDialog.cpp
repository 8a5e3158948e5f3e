#include "presentation/dialogs/SaveListDialog.h"

namespace tavrin {

void SaveListDialog::ask(QWidget*, const WindowServices&, std::function<void(FileListChoice)>) {}

} // namespace tavrin
