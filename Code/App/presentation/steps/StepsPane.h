#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>

class QListView;

namespace tavrin {

class HandNamesEntry;
class StepsModel;
class WindowCommands;

/// The list of steps with its buttons. Object name "stepsPane".
class StepsPane final : public QWidget {
    Q_OBJECT

  public:
    StepsPane(const WindowServices& services, WindowCommands& commands);

    /// The steps or the current one have changed.
    void stepsChanged();
    /// There are other names by hand.
    void handEditsChanged();

  signals:
    /// What commands can do with the steps may have changed.
    void changed();

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
    HandNamesEntry* handNames;
};

} // namespace tavrin
