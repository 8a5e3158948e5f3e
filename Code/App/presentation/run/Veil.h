#pragma once

#include <QWidget>

namespace tavrin {

/// Lies over a widget that is off and takes a quarter of its colours back into the ground of the window,
/// whatever it draws. Clicks go through it.
class Veil final : public QWidget {
    Q_OBJECT

  public:
    /// Turns a widget off and veils it, or the reverse.
    static void lay(QWidget& over, bool isLaid);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    explicit Veil(QWidget& over);
};

} // namespace tavrin
