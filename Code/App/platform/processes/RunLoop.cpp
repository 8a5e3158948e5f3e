#include "platform/processes/RunLoop.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

namespace tavrin {

namespace {

/// What a waiting caller looks at.
struct Outcome {
    std::mutex mutex;
    std::condition_variable changed;
    bool settled = false;
    bool ran = false;
    std::exception_ptr thrown;

    void settle(bool hasRun, std::exception_ptr exception) {
        const std::lock_guard lock(mutex);
        if (settled)
            return;
        settled = true;
        ran = hasRun;
        thrown = std::move(exception);
        changed.notify_all();
    }
};

/// Travels in the queue with the action; dies unrun when the loop drops it, and so frees the caller.
struct Errand {
    std::shared_ptr<Outcome> outcome;
    std::function<void()> action;

    ~Errand() { outcome->settle(false, nullptr); }

    void run() {
        std::exception_ptr thrown;
        try {
            action();
        } catch (...) {
            thrown = std::current_exception();
        }
        action = nullptr;
        outcome->settle(true, std::move(thrown));
    }
};

} // namespace

bool RunLoop::performAndWait(std::function<void()> action) {
    if (isCurrent()) {
        action();
        return true;
    }
    const auto outcome = std::make_shared<Outcome>();
    post([errand = std::shared_ptr<Errand>(new Errand{outcome, std::move(action)})] { errand->run(); });
    std::unique_lock lock(outcome->mutex);
    outcome->changed.wait(lock, [&] { return outcome->settled; });
    if (outcome->thrown)
        std::rethrow_exception(outcome->thrown);
    return outcome->ran;
}

} // namespace tavrin
