#pragma once

#include "platform/files/Descriptor.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

namespace tavrin {

/// Turns an interrupt, a termination or a hang-up signal into a call, on a thread of its own. Make it before
/// any other thread: these signals stay blocked in all threads that come after it.
class InterruptHandler {
  public:
    explicit InterruptHandler(std::function<void()> whenInterrupted);
    ~InterruptHandler();
    InterruptHandler(const InterruptHandler&) = delete;
    InterruptHandler& operator=(const InterruptHandler&) = delete;

    [[nodiscard]] bool wasInterrupted() const { return interrupted; }
    /// Becomes readable, and stays so, when the first signal comes: for those who wait for input.
    [[nodiscard]] int descriptor() const { return announcement.get(); }

    /// While it lives, a program in the foreground has the keyboard: an interrupt typed there is for that
    /// one.
    class ForegroundChild {
      public:
        explicit ForegroundChild(InterruptHandler& owner);
        ~ForegroundChild();
        ForegroundChild(const ForegroundChild&) = delete;
        ForegroundChild& operator=(const ForegroundChild&) = delete;

      private:
        InterruptHandler& handler;
    };

  private:
    void waitForSignals();
    /// Reads a signal, if there is one; whether it counts.
    bool takeSignal();

    std::function<void()> whenInterrupted;
    Descriptor signals;
    Descriptor announcement;
    Descriptor ending;
    std::atomic<bool> interrupted{false};
    std::mutex taking;           ///< guards what follows, from the reading of a signal to what comes of it
    bool leavesKeyboard = false; ///< to a ForegroundChild
    std::thread thread;
};

} // namespace tavrin
