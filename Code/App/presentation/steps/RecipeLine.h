#pragma once

#include <QAbstractButton>

namespace tavrin {

/// The recipe of the steps on one line, dim and in letters of equal width; what does not fit is left out at
/// its end. A click copies all of it. Object name "recipeLine".
class RecipeLine final : public QAbstractButton {
    Q_OBJECT

  public:
    RecipeLine();

    void setRecipe(const QString& newRecipe);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void copy();

    QString recipe;
};

} // namespace tavrin
