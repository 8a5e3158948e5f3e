#pragma once

#include "presentation/dialogs/AnswerOnce.h"
#include "shell/asking/FrontEnd.h"

#include <QDialog>

class QVBoxLayout;

namespace tavrin {

/// A question of a running rename as a sheet of the window. Closing it means "stop". For a moment after it
/// has opened it is deaf, so that a key held down does not answer one question after the other. Its object
/// name is that of the question ("confirmRenameWindow" …).
class ConfirmationSheetWindow final : public QDialog {
    Q_OBJECT

  public:
    /// `thumbnails`: the item is pictured by its content.
    ConfirmationSheetWindow(QWidget* parent, const RunQuestion& question, bool thumbnails,
                            std::function<void(ConfirmationChoice)> answer);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void done(int result) override;

  private:
    void addTexts(const RunQuestion& question, QVBoxLayout& column);
    void addButtons(const RunQuestion& question, QVBoxLayout& column);
    void give(ConfirmationChoice choice);

    AnswerOnce<ConfirmationChoice> answer;
    bool isDeaf = true;
};

} // namespace tavrin
