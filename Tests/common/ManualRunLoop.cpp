#include "common/ManualRunLoop.h"

namespace tavrin::test {

void ManualRunLoop::post(std::function<void()> action) {
    const std::lock_guard lock(mutex);
    if (closed)
        return;
    queue.push_back(std::move(action));
    changed.notify_all();
}

bool ManualRunLoop::runOne() {
    std::function<void()> action;
    {
        const std::lock_guard lock(mutex);
        if (queue.empty())
            return false;
        action = std::move(queue.front());
        queue.pop_front();
    }
    action();
    return true;
}

std::size_t ManualRunLoop::runPosted() {
    std::size_t count = 0;
    while (runOne())
        ++count;
    return count;
}

void ManualRunLoop::advance(std::chrono::milliseconds duration) {
    constexpr double tolerance = 1e-9; // sums of milliseconds are not exact
    const double target = now() + std::chrono::duration<double>(duration).count();
    runPosted();
    for (auto due = timers.nextDue(); due && *due <= target + tolerance; due = timers.nextDue()) {
        time = std::max(now(), *due);
        timers.fireNext(*due);
        runPosted();
    }
    time = std::max(now(), target);
}

bool ManualRunLoop::runUntil(const std::function<bool()>& predicate) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!predicate()) {
        if (runOne())
            continue;
        std::unique_lock lock(mutex);
        if (!changed.wait_until(lock, end, [this] { return !queue.empty() || closed; }) || closed)
            return predicate();
    }
    return true;
}

void ManualRunLoop::reopen() {
    const std::lock_guard lock(mutex);
    closed = false;
}

void ManualRunLoop::close() {
    std::deque<std::function<void()>> dropped; // destroyed without the lock: it frees waiting callers
    const std::lock_guard lock(mutex);
    closed = true;
    dropped.swap(queue);
    changed.notify_all();
}

} // namespace tavrin::test
