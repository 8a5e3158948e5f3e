#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace tavrin {

/// A thread that does one work after the other, in the order in which they were given. Made with the first.
class WorkerThread {
  public:
    WorkerThread() = default;
    /// Drops what waits, and waits for the work in hand.
    ~WorkerThread();
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    /// Any thread.
    void start(std::function<void()> work);

  private:
    void run();

    std::mutex mutex; ///< guards what follows
    std::condition_variable wakeUp;
    std::deque<std::function<void()>> waiting;
    bool isEnding = false;
    std::thread thread;
};

} // namespace tavrin
