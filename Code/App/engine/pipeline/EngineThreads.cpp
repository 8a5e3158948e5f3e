#include "engine/pipeline/EngineThreads.h"

#include "support/application/DebugLog.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace tavrin {

EngineTurns::Turn::Turn(EngineTurns& line) : turns(line) {
    const std::lock_guard lock(turns.mutex);
    turns.line.push_back(this);
}

void EngineTurns::Turn::await() {
    std::unique_lock lock(turns.mutex);
    turns.changed.wait(lock, [this] { return turns.line.front() == this; });
}

void EngineTurns::Turn::end() {
    {
        const std::lock_guard lock(turns.mutex);
        if (!isInLine)
            return;
        isInLine = false;
        turns.line.erase(std::find(turns.line.begin(), turns.line.end(), this));
    }
    turns.changed.notify_all();
}

void RenameThreads::detach(std::function<void()> work) {
    const std::lock_guard lock(mutex);
    joinFinished();
    ++busy;
    Worker& worker = workers.emplace_back();
    try {
        worker.thread =
            std::thread([this, &worker, work = std::move(work)]() mutable { run(worker, std::move(work)); });
    } catch (...) {
        workers.pop_back();
        --busy;
        throw;
    }
}

void RenameThreads::run(Worker& worker, std::function<void()> work) {
    try {
        work();
    } catch (const std::exception& exception) {
        debugLog("a run ended with an exception: {}", exception.what());
    }
    work = nullptr; // with all that it holds, before it counts as ended
    --busy;
    threadEnded();
    worker.hasFinished = true;
}

void RenameThreads::joinFinished() {
    for (auto worker = workers.begin(); worker != workers.end();) {
        if (worker->hasFinished) {
            worker->thread.join();
            worker = workers.erase(worker);
        } else {
            ++worker;
        }
    }
}

void RenameThreads::joinAll() {
    const std::lock_guard lock(mutex);
    for (Worker& worker : workers)
        worker.thread.join();
    workers.clear();
}

} // namespace tavrin
