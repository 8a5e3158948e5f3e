#pragma once

#include "platform/processes/RunLoop.h"

#include <QElapsedTimer>
#include <deque>
#include <memory>
#include <mutex>

class QObject;

namespace tavrin {

/// The event loop of the window as the main thread's run loop. Made on the main thread, after the application
/// object.
class QtRunLoop final : public RunLoop {
  public:
    QtRunLoop();
    ~QtRunLoop() override;

    void post(std::function<void()> action) override;
    [[nodiscard]] bool isCurrent() const override;
    [[nodiscard]] std::unique_ptr<Timer> startTimer(std::chrono::milliseconds interval, bool repeats,
                                                    std::function<void()> action) override;
    [[nodiscard]] double now() const override;

    /// Ends the loop for good: drops what is queued and every later post, which frees the threads that wait.
    /// Main thread.
    void close();

  private:
    class Receiver;
    void runNext();

    QElapsedTimer clock;
    std::mutex mutex;                          ///< guards what follows
    std::unique_ptr<QObject> receiver;         ///< gets an event for each action; null once closed
    std::deque<std::function<void()>> actions; ///< in the order of their events
};

} // namespace tavrin
