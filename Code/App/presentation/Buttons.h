#pragma once

#include <QPushButton>
#include <QStyleOptionToolButton>
#include <QToolButton>

namespace tavrin {

enum class Glyph;

/// Lets a button perform a command, and be on only while that is. The button keeps words and picture of its
/// own.
void performs(QAbstractButton& button, QAction& command);

/// A flat button with a picture and a tip, which is its spoken name too.
[[nodiscard]] QToolButton* makeToolButton(const QString& objectName, Glyph glyph, const QString& tip);

/// A button whose arrow says that it opens a menu; the style's own mark would be a second one.
class MenuButton final : public QToolButton {
  protected:
    void initStyleOption(QStyleOptionToolButton* option) const override;
};

/// The button of a window that does what the window is for. It has the colours of selections where the
/// palette is ours, else it is a button like any other.
class ProminentButton final : public QPushButton {
  public:
    explicit ProminentButton(const QString& label);

  private:
    void applyColours();
};

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
