#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <mutex>
#include <thread>
#include <utility>

namespace tavrin {

/// The threads of the engine, one for each request. Finished ones are joined when the next one starts, so
/// that a long session collects none.
class RenameThreads {
  public:
    /// `ended` is called on each thread as its last act, when it counts as busy no more.
    explicit RenameThreads(std::function<void()> ended) : threadEnded(std::move(ended)) {}
    ~RenameThreads() { joinAll(); }
    RenameThreads(const RenameThreads&) = delete;
    RenameThreads& operator=(const RenameThreads&) = delete;

    /// Runs the work on a thread of its own. An exception out of it is logged.
    void detach(std::function<void()> work);
    [[nodiscard]] bool areBusy() const { return busy > 0; }
    void joinAll();

  private:
    struct Worker {
        std::thread thread;
        std::atomic<bool> hasFinished{false};
    };

    void run(Worker& worker, std::function<void()> work);
    void joinFinished();

    const std::function<void()> threadEnded;
    std::mutex mutex; ///< guards `workers`
    std::list<Worker> workers;
    std::atomic<int> busy{0};
};

} // namespace tavrin
