#pragma once

#include <QToolButton>

namespace tavrin {

enum class Glyph;

/// A button that stays down, drawn so that it is plain in light and in dark palettes whether it is: the
/// ground of chosen things with a frame in the accent, or nothing at all.
class ToggleButton final : public QToolButton {
  public:
    ToggleButton(const QString& label, Glyph glyph);

    [[nodiscard]] QSize sizeHint() const override;
    /// Room for the picture: the label goes where there is none for it.
    [[nodiscard]] QSize minimumSizeHint() const override;
    /// The ground of a button of this kind.
    static void paintGround(QPainter& painter, const QRect& place, const QWidget& button, bool isChosen);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tavrin
