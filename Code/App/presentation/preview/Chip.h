#pragma once

#include <QAbstractButton>

namespace tavrin {

enum class Glyph;

/// A small round button that tells of something out of the ordinary, and leads to it or ends it.
class Chip final : public QAbstractButton {
    Q_OBJECT

  public:
    Chip(const char* name, Glyph glyph);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    Glyph glyph;
};

} // namespace tavrin
