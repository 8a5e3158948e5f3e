#pragma once

#include <deque>
#include <functional>
#include <memory>

namespace tavrin {

class RunLoop;
class Timer;

/// Work on many things that has to be done on the main thread: short work is done at once, long work in
/// slices between other events, one after the other in the order begun. Main thread.
class SlicedWork {
  public:
    /// Does a small piece; false when nothing is left to do. Throws nothing.
    using Step = std::function<bool()>;

    explicit SlicedWork(RunLoop& runLoop);
    ~SlicedWork();

    void begin(Step step);
    /// Does at once all that is left.
    void finish();
    /// Forgets what is left.
    void drop();
    /// Whether nothing is left; no step is, while it is being done.
    [[nodiscard]] bool isIdle() const { return steps.empty(); }

  private:
    /// Until there is nothing left, or the slice has taken this many seconds.
    void proceed(double seconds);

    RunLoop& loop;
    std::deque<Step> steps;
    std::unique_ptr<Timer> next;
};

} // namespace tavrin
