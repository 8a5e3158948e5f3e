#include "presentation/QtRunLoop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>
#include <QTimer>

namespace tavrin {

namespace {

class QtTimer final : public Timer {
  public:
    QtTimer(std::chrono::milliseconds interval, bool repeats, std::function<void()> newAction)
        : action(std::move(newAction)) {
        timer.setSingleShot(!repeats);
        timer.setTimerType(Qt::CoarseTimer);
        // Whoever reacts may drop the timer, and with it this.
        QObject::connect(&timer, &QTimer::timeout, &timer, [copy = action] { copy(); });
        timer.start(interval);
    }

    void fire() override {
        if (timer.isSingleShot())
            timer.stop();
        const auto copy = action;
        copy();
    }
    [[nodiscard]] bool isPending() const override { return timer.isActive(); }

  private:
    std::function<void()> action;
    QTimer timer;
};

} // namespace

/// The actions themselves stay out of Qt's queue: they go from thread to thread by a lock of ours.
class QtRunLoop::Receiver final : public QObject {
  public:
    explicit Receiver(QtRunLoop& owner) : loop(owner) {}

  protected:
    void customEvent(QEvent*) override { loop.runNext(); }

  private:
    QtRunLoop& loop;
};

QtRunLoop::QtRunLoop() : receiver(std::make_unique<Receiver>(*this)) { clock.start(); }

QtRunLoop::~QtRunLoop() { close(); }

void QtRunLoop::post(std::function<void()> action) {
    const std::lock_guard lock(mutex);
    if (!receiver)
        return;
    actions.push_back(std::move(action));
    QCoreApplication::postEvent(receiver.get(), new QEvent(QEvent::User));
}

void QtRunLoop::runNext() {
    std::function<void()> action;
    {
        const std::lock_guard lock(mutex);
        if (actions.empty())
            return;
        action = std::move(actions.front());
        actions.pop_front();
    }
    action();
}

bool QtRunLoop::isCurrent() const {
    return QThread::currentThread() == QCoreApplication::instance()->thread();
}

std::unique_ptr<Timer> QtRunLoop::startTimer(std::chrono::milliseconds interval, bool repeats,
                                             std::function<void()> action) {
    return std::make_unique<QtTimer>(interval, repeats, std::move(action));
}

double QtRunLoop::now() const { return static_cast<double>(clock.nsecsElapsed()) * 1e-9; }

void QtRunLoop::close() {
    std::unique_ptr<QObject> dropped;
    std::deque<std::function<void()>> droppedActions;
    const std::lock_guard lock(mutex);
    dropped = std::move(receiver);
    droppedActions.swap(actions);
}

} // namespace tavrin
