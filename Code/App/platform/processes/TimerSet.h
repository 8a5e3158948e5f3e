#pragma once

#include "platform/processes/RunLoop.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tavrin {

/// The timers of a run loop that keeps its own time. One thread only. Handles may outlive the set.
class TimerSet {
  public:
    /// `now` and all due times are seconds of the loop's clock. Intervals below a millisecond count as one.
    [[nodiscard]] std::unique_ptr<Timer> start(double now, std::chrono::milliseconds interval, bool repeats,
                                               std::function<void()> action);
    /// When the next timer is due; absent when none is pending.
    [[nodiscard]] std::optional<double> nextDue();
    /// Fires the timer that is due first, if it is due at `now`; equal times in the order of their start. A
    /// repeating timer that is late skips the ticks it has missed.
    bool fireNext(double now);

    struct State;

  private:
    std::shared_ptr<State> first();

    std::vector<std::weak_ptr<State>> timers;
    std::uint64_t started = 0;
};

} // namespace tavrin
