#pragma once

#include "presentation/WindowServices.h"
#include "shell/asking/FrontEnd.h"

#include <functional>

class QWidget;

namespace tavrin {

/// Asks for the form of a saved list, and shows the first lines of each.
struct SaveListDialog {
    static void ask(QWidget* parent, const WindowServices& services,
                    std::function<void(FileListChoice)> answer);
};

} // namespace tavrin
