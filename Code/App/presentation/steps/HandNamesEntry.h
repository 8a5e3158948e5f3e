#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>

class QCheckBox;
class QLabel;

namespace tavrin {

/// Below the steps, that there are names by hand, which come after all of them; its box turns these off for a
/// look. It shows while there are any. Object name "handNamesEntry".
class HandNamesEntry final : public QWidget {
    Q_OBJECT

  public:
    explicit HandNamesEntry(const WindowServices& services);

    void refresh();

  protected:
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    const WindowServices services;
    QCheckBox* box;
    QLabel* count;
};

} // namespace tavrin
