#pragma once

#include <QCoreApplication>
#include <QString>
#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>

namespace tavrin {

/// How fast a run goes, and how long it will still take: by what it has done in the last two seconds. The
/// time left is told from the third second on; it grows only when it has been wrong for three seconds. While
/// the run waits for an answer the clock stands still.
class RunClock {
    Q_DECLARE_TR_FUNCTIONS(tavrin::RunClock)

  public:
    using Time = std::chrono::steady_clock::time_point;
    using Seconds = std::chrono::duration<double>;

    void start(Time now);
    /// Told now and then, with what is done by now and how much there is.
    void tell(Time now, std::int32_t done, std::int32_t total);
    void pause(Time now);
    void goOn(Time now);

    [[nodiscard]] std::optional<double> rate() const { return perSecond; }
    [[nodiscard]] std::optional<Seconds> timeLeft() const { return shownLeft; }
    /// "18 a second · about 15 s left"; what is not known is left out.
    [[nodiscard]] QString text() const;
    /// "about 15 s left"; empty where it is not known.
    [[nodiscard]] QString timeLeftText() const;

  private:
    struct Sample {
        Time time;
        std::int32_t done;
    };

    void showLeft(Time now, Seconds estimate);
    [[nodiscard]] QString rateText() const;

    std::deque<Sample> samples;
    Time started;
    Time lastTold;
    std::optional<Time> pausedAt;
    std::optional<Time> wrongSince;
    std::optional<double> perSecond;
    std::optional<Seconds> shownLeft;
};

} // namespace tavrin
