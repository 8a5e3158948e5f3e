#pragma once

#include "shell/asking/FrontEnd.h"

#include <QDialog>
#include <vector>

class QListWidget;

namespace tavrin {

/// The failures of a run, with the message of the selected one, and how many items they concern. Copying
/// takes all rows, or what is selected of the message. Object name "errorWindow".
class ErrorWindow final : public QDialog {
    Q_OBJECT

  public:
    ErrorWindow(QWidget* parent, const FailureReport& report);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void copyAll() const;

    std::vector<ProcessingError> errors;
    QListWidget* list;
};

} // namespace tavrin
