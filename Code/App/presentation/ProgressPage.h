#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

namespace tavrin {

/// What a run is doing: stage, bar, count and item. Object name "progressPage".
class ProgressPage final : public QWidget {
    Q_OBJECT

  public:
    ProgressPage(WindowServices services, QWidget* parent);

    /// Takes over what the record displays at this moment.
    void refresh();

  private:
    WindowServices services;
    QLabel* stage;
    QProgressBar* bar;
    QLabel* items;
    QLabel* description;
    QPushButton* stopButton;
};

} // namespace tavrin
