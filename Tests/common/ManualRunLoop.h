#pragma once

#include "common/Testing.h"
#include "platform/processes/QueueRunLoop.h"
#include "platform/processes/RunLoop.h"

#include <condition_variable>
#include <deque>

namespace tavrin::test {

/// A run loop whose time stands still until the test moves it. The thread that makes it is the main thread;
/// posted actions run when the test asks for it.
class ManualRunLoop : public RunLoop {
  public:
    ~ManualRunLoop() override { close(); }

    void post(std::function<void()> action) override;
    [[nodiscard]] bool isCurrent() const override { return std::this_thread::get_id() == mainThread; }
    [[nodiscard]] std::unique_ptr<Timer> startTimer(std::chrono::milliseconds interval, bool repeats,
                                                    std::function<void()> action) override {
        return timers.start(now(), interval, repeats, std::move(action));
    }
    [[nodiscard]] double now() const override { return time; }

    /// Runs all posted actions, those too that are posted meanwhile; the number run.
    std::size_t runPosted();
    /// Moves the time on and fires each timer at its moment; posted actions run before and after each.
    void advance(std::chrono::milliseconds duration);
    /// Runs posted actions, waiting for new ones from other threads, until the predicate holds, which is
    /// asked at the start and after each. False when that has not come about within a minute of real time.
    bool runUntil(const std::function<bool()>& predicate);
    /// Drops what is queued and every later post, as a loop that has ended. Any thread.
    void close();
    /// Takes posts again, for the next start of a program.
    void reopen();

  private:
    bool runOne();

    const std::thread::id mainThread = std::this_thread::get_id();
    std::atomic<double> time = 0;
    TimerSet timers; ///< main thread only

    std::mutex mutex; ///< guards what follows
    std::condition_variable changed;
    std::deque<std::function<void()>> queue;
    bool closed = false;
};

} // namespace tavrin::test
