#pragma once

#include "platform/processes/RunLoop.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
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

/// A run loop over a queue, for programs without a window. The thread that makes it is the main thread.
class QueueRunLoop : public RunLoop {
  public:
    QueueRunLoop();
    ~QueueRunLoop() override;

    void post(std::function<void()> action) override;
    [[nodiscard]] bool isCurrent() const override;
    [[nodiscard]] std::unique_ptr<Timer> startTimer(std::chrono::milliseconds interval, bool repeats,
                                                    std::function<void()> action) override;
    [[nodiscard]] double now() const override;

    /// Runs actions and timers until stop() is called. Main thread only; may be nested.
    void run();
    /// The same, until the predicate holds, which is asked at the start and after each action. False when
    /// stop() or close() came first.
    bool runUntil(const std::function<bool()>& predicate);
    /// Ends the innermost run() or runUntil(), or the next one when none is under way. Any thread.
    void stop();
    /// Ends the loop for good: drops what is queued and every later post. Any thread.
    void close();

  private:
    bool waitForNews(std::function<void()>& action);

    const std::thread::id mainThread;
    TimerSet timers; ///< main thread only

    mutable std::mutex mutex; ///< guards what follows
    std::condition_variable changed;
    std::deque<std::function<void()>> queue;
    bool stopping = false;
    bool closed = false;
};

} // namespace tavrin
