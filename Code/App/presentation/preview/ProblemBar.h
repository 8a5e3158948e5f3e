#pragma once

#include <QFrame>

class QLabel;

namespace tavrin {

class PreviewPane;
class PreviewTableModel;

/// Says how many items can't be renamed as shown, and leads to them. It shows only when needed and stops
/// nothing. Object name "problemBar".
class ProblemBar final : public QFrame {
  public:
    explicit ProblemBar(PreviewPane& pane);

    void showProblems(const PreviewTableModel& model);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void applyColours();

    QLabel* symbol;
    QLabel* text;
};

} // namespace tavrin
