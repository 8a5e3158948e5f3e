#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>

class QListView;

namespace tavrin {

class StepsModel;
class WindowCommands;

/// The list of steps with its buttons. Object name "stepsPane".
class StepsPane final : public QWidget {
    Q_OBJECT

  public:
    StepsPane(const WindowServices& services, WindowCommands& commands);

    /// The steps or the current one have changed.
    void stepsChanged();

  protected:
    /// Of the list, whose Delete key removes the step.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget* makeHead();
    QWidget* makeButtons();
    void buildView();
    void offerCommands(const QPoint& place);

    const WindowServices services;
    WindowCommands& commands;
    StepsModel* model;
    QListView* view;
};

} // namespace tavrin
