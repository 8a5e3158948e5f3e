#pragma once

#include <QPointer>
#include <QWidget>
#include <functional>
#include <vector>

namespace tavrin {

/// Where a card lies: over the whole window, so that nothing else can be clicked, with one part of the window
/// dimmed and the rest turned off. Places are asked for anew whenever the window changes.
class CardLayer final : public QWidget {
  public:
    /// In the coordinates of the widget that the card lies over.
    struct Places {
        std::function<QRect()> area;               ///< what is dimmed; all of the widget where there is none
        std::function<std::vector<QRect>()> spots; ///< what the card is about, which stays bright
    };

    /// `over` stays on; it must be a part of a window, and may go before the layer.
    explicit CardLayer(QWidget& over);
    ~CardLayer() override { release(); }

    /// The frames of the spots are those of a failure, or in the accent.
    void setPlaces(Places newPlaces, bool areFailures);
    /// Hides it and turns on again what it has turned off.
    void release();
    /// Puts the card to its place: below what it is about, above it, or in the middle.
    void place();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent*) override {}
    void mouseReleaseEvent(QMouseEvent*) override {}
    void mouseDoubleClickEvent(QMouseEvent*) override {}
    void wheelEvent(QWheelEvent*) override {}
    void contextMenuEvent(QContextMenuEvent*) override {}

  private:
    void turnOffBeside(QWidget& ancestor);
    [[nodiscard]] QRect dimmed() const;
    void paintPoint(QPainter& painter) const;

    QPointer<QWidget> over;
    std::vector<QPointer<QWidget>> turnedOff;
    Places places;
    bool areFailures = false;
    std::vector<QRect> spots; ///< in the layer's own coordinates
    QPoint point;             ///< the tip of the mark that leads from the card to its spot; null without one
};

} // namespace tavrin
