#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace tavrin {

/// A pending timer. Destroying the handle cancels the timer. Main thread only.
class Timer {
  public:
    virtual ~Timer() = default;
    /// Runs the action at once; a one-shot timer is then spent.
    virtual void fire() = 0;
    /// Whether it will still fire.
    [[nodiscard]] virtual bool isPending() const = 0;
};

/// The main thread's event loop. A window implements it over its own; the terminal command and the tests use
/// QueueRunLoop.
class RunLoop {
  public:
    virtual ~RunLoop() = default;

    /// Queues an action for the main thread. Any thread.
    virtual void post(std::function<void()> action) = 0;
    /// Whether the caller is on the main thread.
    [[nodiscard]] virtual bool isCurrent() const = 0;
    /// Main thread only; the action runs on the main thread.
    [[nodiscard]] virtual std::unique_ptr<Timer> startTimer(std::chrono::milliseconds interval, bool repeats,
                                                            std::function<void()> action) = 0;
    /// Seconds of a steady clock; tests may drive it by hand.
    [[nodiscard]] virtual double now() const = 0;

    /// Runs the action on the main thread and waits for its end; directly when already there. When the loop
    /// has ended, the action is dropped and the caller goes on (false).
    bool performAndWait(std::function<void()> action);
};

} // namespace tavrin
