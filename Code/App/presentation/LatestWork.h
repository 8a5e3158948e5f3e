#pragma once

#include <QObject>
#include <QThreadPool>
#include <atomic>
#include <memory>
#include <utility>

namespace tavrin {

/// Work of one kind on threads of its own, of which only the newest counts. Used by the main thread; its end
/// waits for what is under way.
class LatestWork {
  public:
    using Unwanted = std::atomic<bool>; ///< set when nobody waits for the result any more

    LatestWork() { threads.setMaxThreadCount(2); }
    ~LatestWork() {
        *isUnwanted = true;
        threads.waitForDone();
    }
    LatestWork(const LatestWork&) = delete;
    LatestWork& operator=(const LatestWork&) = delete;

    /// Calls `work`, which gets an `Unwanted`, on another thread, and `then` with its result on the main
    /// thread unless there was another start or a cancel meanwhile.
    template <typename Work, typename Then> void start(Work work, Then then) {
        cancel();
        threads.start([this, flag = isUnwanted, work = std::move(work), then = std::move(then)]() mutable {
            auto result = std::make_shared<decltype(work(*flag))>(work(*flag));
            QMetaObject::invokeMethod(
                &receiver,
                [flag, result = std::move(result), then = std::move(then)] {
                    if (!*flag)
                        then(std::move(*result));
                },
                Qt::QueuedConnection);
        });
    }
    /// What is under way goes on as far as it does not ask, and its result is dropped.
    void cancel() {
        *isUnwanted = true;
        isUnwanted = std::make_shared<Unwanted>(false);
    }

  private:
    std::shared_ptr<Unwanted> isUnwanted = std::make_shared<Unwanted>(false);
    QThreadPool threads;
    QObject receiver;
};

} // namespace tavrin
