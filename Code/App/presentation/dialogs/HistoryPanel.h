#pragma once

#include "presentation/WindowServices.h"

#include <QWidget>

class QPushButton;
class QSpinBox;

namespace tavrin {

/// How long runs are kept, and a way to forget them. Object names as the user defaults: "historyDays",
/// "historyRuns"; "forgetAllRuns".
class HistoryPanel final : public QWidget {
    Q_OBJECT

  public:
    explicit HistoryPanel(const WindowServices& shared);

  private:
    QSpinBox* addLimit(const char* key, int value, int most);
    void forgetAll();

    const WindowServices services;
    QPushButton* forgetButton;
};

} // namespace tavrin
