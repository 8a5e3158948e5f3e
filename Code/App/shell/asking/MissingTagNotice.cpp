#include "shell/asking/MissingTagNotice.h"

#include "platform/processes/RunLoop.h"

#include <condition_variable>
#include <mutex>
#include <set>
#include <utility>

namespace tavrin {

/// The dialogs that somebody waits for, from the moment they are asked for.
class MissingTagNotice::Dialogs {
  public:
    int open() {
        const std::lock_guard lock(mutex);
        ids.insert(++lastId);
        return lastId;
    }
    void close(int id) {
        const std::lock_guard lock(mutex);
        ids.erase(id);
        changed.notify_all();
    }
    void wait(int id) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return hasEnded || !ids.contains(id); });
    }
    void end() {
        const std::lock_guard lock(mutex);
        hasEnded = true;
        changed.notify_all();
    }
    [[nodiscard]] bool haveEnded() {
        const std::lock_guard lock(mutex);
        return hasEnded;
    }

  private:
    std::mutex mutex; ///< guards what follows
    std::condition_variable changed;
    std::set<int> ids;
    int lastId = 0;
    bool hasEnded = false;
};

MissingTagNotice::MissingTagNotice(RunLoop& mainLoop, Show showDialog)
    : loop(mainLoop), show(std::move(showDialog)), dialogs(std::make_shared<Dialogs>()) {}

MissingTagNotice::~MissingTagNotice() { end(); }

void MissingTagNotice::end() { dialogs->end(); }

void MissingTagNotice::tellThatTagIsNotPresent() {
    if (dialogs->haveEnded())
        return;
    if (loop.isCurrent()) { // who is to close the dialog must not wait for it
        show([] {});
        return;
    }
    const int id = dialogs->open();
    // Closes when whoever shows the dialog, or would have, lets go of it.
    auto closing = std::shared_ptr<void>(nullptr, [all = dialogs, id](void*) { all->close(id); });
    loop.post([this, all = dialogs, id, closing = std::move(closing)] {
        if (!all->haveEnded())
            show([all, id, closing] { all->close(id); });
    });
    dialogs->wait(id);
}

} // namespace tavrin
