#pragma once

#include "shell/asking/FrontEnd.h"

#include <QDialog>
#include <functional>

namespace tavrin {

/// Shows what an undo or redo would do and what it can't do, and asks whether it is to be done. Object name
/// "takeBackDialog".
class TakeBackDialog final : public QDialog {
    Q_OBJECT

  public:
    /// Opens it as a sheet; it deletes itself.
    static void ask(QWidget* parent, const TakeBackQuestion& question, std::function<void(bool)> answer);

  private:
    TakeBackDialog(QWidget* parent, const TakeBackQuestion& question);
};

} // namespace tavrin
