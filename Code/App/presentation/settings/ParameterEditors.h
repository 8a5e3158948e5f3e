#pragma once

#include "presentation/WindowServices.h"

class QWidget;

namespace tavrin {

class BaseRenameAction;
struct ParameterDescription;

/// The control of one parameter, by its kind, bound to the action: what the user enters is written at each
/// keystroke, what changes elsewhere is shown. Its object name is the key. The caller takes it over.
[[nodiscard]] QWidget* makeParameterEditor(const ParameterDescription& parameter, BaseRenameAction& action,
                                           const WindowServices& services);

} // namespace tavrin
