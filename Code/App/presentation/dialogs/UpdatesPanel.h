#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace tavrin {

/// The settings of the check for updates: where the feed lies, how often it is asked, and asking it now.
class UpdatesPanel final : public QWidget {
    Q_OBJECT

  public:
    explicit UpdatesPanel(const WindowServices& shared);

  protected:
    /// An address that is being typed when the window goes counts as well.
    void hideEvent(QHideEvent* event) override;

  private:
    void addInterval();
    void storeAddress();
    void refresh();

    const WindowServices services;
    QLineEdit* address;
    QLabel* problem;
    QComboBox* interval;
    QPushButton* checkNow;
};

} // namespace tavrin
