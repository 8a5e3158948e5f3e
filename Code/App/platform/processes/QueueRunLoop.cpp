#include "platform/processes/QueueRunLoop.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavrin {

QueueRunLoop::QueueRunLoop() : mainThread(std::this_thread::get_id()) {}

QueueRunLoop::~QueueRunLoop() { close(); }

void QueueRunLoop::post(std::function<void()> action) {
    const std::lock_guard lock(mutex);
    if (closed)
        return;
    queue.push_back(std::move(action));
    changed.notify_one();
}

bool QueueRunLoop::isCurrent() const { return std::this_thread::get_id() == mainThread; }

std::unique_ptr<Timer> QueueRunLoop::startTimer(std::chrono::milliseconds interval, bool repeats,
                                                std::function<void()> action) {
    return timers.start(now(), interval, repeats, std::move(action));
}

double QueueRunLoop::now() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void QueueRunLoop::run() {
    runUntil([] { return false; });
}

bool QueueRunLoop::runUntil(const std::function<bool()>& predicate) {
    while (!predicate()) {
        // One timer and one action in turn, so that neither can starve the other.
        if (timers.fireNext(now()) && predicate())
            return true;
        std::function<void()> action;
        if (!waitForNews(action))
            return false;
        if (action)
            action();
    }
    return true;
}

/// Waits for an action or a due timer; false when the loop is to end.
bool QueueRunLoop::waitForNews(std::function<void()>& action) {
    std::unique_lock lock(mutex);
    const auto hasNews = [this] { return !queue.empty() || stopping || closed; };
    if (const auto due = timers.nextDue())
        changed.wait_for(lock, std::chrono::duration<double>(*due - now()), hasNews);
    else
        changed.wait(lock, hasNews);
    if (std::exchange(stopping, false) || closed)
        return false;
    if (!queue.empty()) {
        action = std::move(queue.front());
        queue.pop_front();
    }
    return true;
}

void QueueRunLoop::stop() {
    const std::lock_guard lock(mutex);
    stopping = true;
    changed.notify_all();
}

void QueueRunLoop::close() {
    std::deque<std::function<void()>> dropped; // destroyed without the lock: it frees waiting callers
    const std::lock_guard lock(mutex);
    closed = true;
    dropped.swap(queue);
    changed.notify_all();
}

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
