#pragma once

#include "presentation/WindowServices.h"

class QWidget;

namespace tavrin {

/// The list of presets: edit, delete, show their folder.
struct OrganizePresetsDialog {
    static void open(QWidget* parent, const WindowServices& services);
};

} // namespace tavrin
