#pragma once

#include "presentation/settings/ParameterBinding.h"

#include <QWidget>

class QComboBox;

namespace tavrin {

class BaseRenameAction;

/// The parameter `separatorMode` of a date as two choices: what comes first, and what stands between.
class SeparatorModeEditor final : public QWidget {
  public:
    explicit SeparatorModeEditor(BaseRenameAction& action);

  private:
    void show(int mode);
    void write();

    QComboBox* orderBox;
    QComboBox* betweenBox;
    ParameterBinding binding;
};

} // namespace tavrin
