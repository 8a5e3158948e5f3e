#include "platform/processes/QueueRunLoop.h"

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

} // namespace tavrin
