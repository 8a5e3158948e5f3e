#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

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

} // namespace tavrin
