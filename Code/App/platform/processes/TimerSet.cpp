#include "platform/processes/TimerSet.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavrin {

struct TimerSet::State {
    double due;
    double interval;
    bool repeats;
    bool pending;
    std::uint64_t number;
    std::function<void()> action;
};

namespace {

/// Holds the only lasting reference to the state, so that its end is the end of the timer.
class Handle : public Timer {
  public:
    explicit Handle(std::shared_ptr<TimerSet::State> timer) : state(std::move(timer)) {}
    ~Handle() override { state->pending = false; }

    void fire() override {
        if (!state->pending)
            return;
        // The action may destroy this handle.
        const std::shared_ptr<TimerSet::State> kept = state;
        kept->pending = kept->repeats;
        kept->action();
    }
    [[nodiscard]] bool isPending() const override { return state->pending; }

  private:
    std::shared_ptr<TimerSet::State> state;
};

} // namespace

std::unique_ptr<Timer> TimerSet::start(double now, std::chrono::milliseconds interval, bool repeats,
                                       std::function<void()> action) {
    const double seconds = std::max(0.001, std::chrono::duration<double>(interval).count());
    auto state =
        std::make_shared<State>(State{now + seconds, seconds, repeats, true, started++, std::move(action)});
    timers.emplace_back(state);
    return std::make_unique<Handle>(std::move(state));
}

std::shared_ptr<TimerSet::State> TimerSet::first() {
    std::erase_if(timers, [](const std::weak_ptr<State>& timer) {
        const auto state = timer.lock();
        return !state || !state->pending;
    });
    std::shared_ptr<State> earliest;
    for (const auto& timer : timers) {
        auto state = timer.lock();
        if (!earliest || std::pair(state->due, state->number) < std::pair(earliest->due, earliest->number))
            earliest = std::move(state);
    }
    return earliest;
}

std::optional<double> TimerSet::nextDue() {
    const auto state = first();
    return state ? std::optional(state->due) : std::nullopt;
}

bool TimerSet::fireNext(double now) {
    const auto state = first();
    if (!state || state->due > now)
        return false;
    if (state->repeats)
        state->due += state->interval * (std::floor((now - state->due) / state->interval) + 1);
    else
        state->pending = false;
    state->action();
    return true;
}

} // namespace tavrin
