#pragma once

#include "store/ProcessingError.h"

#include <QDialog>
#include <vector>

class QListWidget;

namespace tavrin {

/// All failures of a run, with the message of the selected one. Copying takes all rows. Object name
/// "errorWindow".
class ErrorWindow final : public QDialog {
  public:
    ErrorWindow(QWidget* parent, const std::vector<ProcessingError>& errors);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void copyAll() const;

    std::vector<ProcessingError> errors;
    QListWidget* list;
};

} // namespace tavrin
