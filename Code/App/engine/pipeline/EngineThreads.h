#pragma once

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <thread>
#include <utility>

namespace tavrin {

/// The engine's lock: one run at a time, in the order in which the runs were asked for, so that a rename
/// comes after the preview that was asked for before it.
class EngineTurns {
  public:
    /// A place in the line, taken when it is made and given up when it ends, whether its turn came or not.
    class Turn {
      public:
        explicit Turn(EngineTurns& line);
        ~Turn() { end(); }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

        /// Waits until all who came before have ended.
        void await();
        void end();

      private:
        EngineTurns& turns;
        bool isInLine = true;
    };

    /// Awaits a turn and ends it with the scope.
    class Held {
      public:
        explicit Held(Turn& held) : turn(held) { turn.await(); }
        ~Held() { turn.end(); }
        Held(const Held&) = delete;
        Held& operator=(const Held&) = delete;

      private:
        Turn& turn;
    };

  private:
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<const Turn*> line;
};

/// The threads of the engine, one for each request. Finished ones are joined when the next one starts, so
/// that a long session collects none.
class RenameThreads {
  public:
    /// `ended` is called on each thread as its last act, when it counts as busy no more.
    explicit RenameThreads(std::function<void()> ended) : threadEnded(std::move(ended)) {}
    ~RenameThreads() { joinAll(); }
    RenameThreads(const RenameThreads&) = delete;
    RenameThreads& operator=(const RenameThreads&) = delete;

    /// Runs the work on a thread of its own. An exception out of it is logged. Throws where the system gives
    /// no thread.
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
