#pragma once

#include "presentation/WindowServices.h"
#include "presentation/settings/ParameterBinding.h"

#include <QWidget>

class QLabel;

namespace tavrin {

class BaseRenameAction;

/// The file of a list action: its path, and buttons to choose, to read anew and to forget it.
class FileEditor final : public QWidget {
  public:
    FileEditor(BaseRenameAction& action, const WindowServices& services);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void show(const QString& path);
    void browse();

    BaseRenameAction& action;
    QString path;
    QLabel* pathLabel;
    ParameterBinding binding;
};

} // namespace tavrin
