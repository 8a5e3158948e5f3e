#include "presentation/WorkerThread.h"

#include <utility>

namespace tavrin {

WorkerThread::~WorkerThread() {
    {
        const std::lock_guard lock(mutex);
        isEnding = true;
        waiting.clear();
    }
    wakeUp.notify_one();
    if (thread.joinable())
        thread.join();
}

void WorkerThread::start(std::function<void()> work) {
    const std::lock_guard lock(mutex);
    waiting.push_back(std::move(work));
    if (!thread.joinable())
        thread = std::thread([this] { run(); });
    wakeUp.notify_one();
}

void WorkerThread::run() {
    std::unique_lock lock(mutex);
    for (;;) {
        wakeUp.wait(lock, [this] { return isEnding || !waiting.empty(); });
        if (isEnding)
            return;
        const std::function<void()> work = std::move(waiting.front());
        waiting.pop_front();
        lock.unlock();
        work();
        lock.lock();
    }
}

} // namespace tavrin
