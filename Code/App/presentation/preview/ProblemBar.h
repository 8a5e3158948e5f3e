#pragma once

#include <QFrame>
#include <cstddef>
#include <functional>
#include <vector>

class QLabel;

namespace tavrin {

class PreviewPane;
enum class Glyph;

/// Says how many items can't be renamed as shown, and leads to them; else how many names were changed because
/// they would have been the same. It shows only when needed and stops nothing. Object name "problemBar".
class ProblemBar final : public QFrame {
  public:
    explicit ProblemBar(PreviewPane& pane);

    /// The numbers of items.
    void showCounts(std::size_t problems, std::size_t madeDistinct);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void addButton(const char* name, const QIcon& icon, const char* text, const char* tip,
                   std::function<void()> effect);
    void applyColours();

    bool isAboutProblems = true;
    QLabel* symbol;
    QLabel* text;
    std::vector<QWidget*> buttons; ///< that lead to problems
};

} // namespace tavrin
