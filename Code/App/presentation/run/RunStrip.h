#pragma once

#include "presentation/WindowServices.h"
#include "presentation/run/RunClock.h"

#include <QElapsedTimer>
#include <QWidget>
#include <cstddef>

class QLabel;
class QPushButton;

namespace tavrin {

class RunBar;

/// How far the run is, how fast, how long still, and the button that stops it. It takes the place of the
/// bottom row. Object name "runStrip".
class RunStrip final : public QWidget {
    Q_OBJECT

  public:
    explicit RunStrip(WindowServices services, QWidget* parent = nullptr);

    /// A run begins.
    void begin();
    /// Takes over what the progress record displays.
    void refresh();
    /// While a question is open the clock stands still.
    void setWaiting(bool waits);
    /// Stops the run after the item in hand. Does nothing in the first moment, so that a double click on the
    /// button that begins a run does not stop it.
    void stop();
    /// Of what is done, from 0 to 100; absent where it is not known.
    [[nodiscard]] std::optional<int> percent() const;
    [[nodiscard]] QString timeLeftText() const { return clock.timeLeftText(); }
    /// As wide as the button in whose place it lies.
    void setStopWidth(int width);

  private:
    void showRate();

    WindowServices services;
    RunClock clock;
    QElapsedTimer sinceBegin;
    bool isWaiting = false;
    std::size_t failed = 0;
    QLabel* stage;
    QLabel* items;
    QLabel* rate;
    RunBar* bar;
    QPushButton* stopButton;
};

} // namespace tavrin
