#pragma once

#include <QFrame>
#include <cstddef>
#include <vector>

class QAbstractButton;
class QAction;
class QLabel;

namespace tavrin {

class WindowCommands;

/// Says how many items can't be renamed as shown, and leads to them; else how many names were changed because
/// they would have been the same. It shows only when needed and stops nothing. Object name "problemBar".
class ProblemBar final : public QFrame {
    Q_OBJECT

  public:
    explicit ProblemBar(WindowCommands& commands);

    /// The numbers of items.
    void showCounts(std::size_t problems, std::size_t madeDistinct);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void addButton(QAbstractButton* button, QAction& command);
    void applyColours();

    bool isAboutProblems = true;
    QLabel* symbol;
    QLabel* text;
    std::vector<QWidget*> buttons; ///< that lead to problems
};

} // namespace tavrin
