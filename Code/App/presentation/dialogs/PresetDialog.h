#pragma once

#include "presentation/WindowServices.h"

#include <cstddef>
#include <functional>

class QWidget;

namespace tavrin {

/// Asks for the name and the description of a preset.
struct PresetDialog {
    /// Saves the steps as a new preset.
    static void saveAsPreset(QWidget* parent, const WindowServices& services);
    /// Changes those of a preset (index as in PresetsManager).
    /// `then` is called when the dialog has been closed.
    static void edit(QWidget* parent, const WindowServices& services, std::size_t index,
                     std::function<void()> then);
};

} // namespace tavrin
