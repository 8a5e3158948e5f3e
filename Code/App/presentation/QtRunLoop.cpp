#include "presentation/QtRunLoop.h"

#include <QCoreApplication>
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

QtRunLoop::QtRunLoop() : receiver(std::make_unique<QObject>()) { clock.start(); }

QtRunLoop::~QtRunLoop() { close(); }

void QtRunLoop::post(std::function<void()> action) {
    const std::lock_guard lock(mutex);
    if (receiver)
        QMetaObject::invokeMethod(receiver.get(), std::move(action), Qt::QueuedConnection);
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
    const std::lock_guard lock(mutex);
    dropped = std::move(receiver);
}

} // namespace tavrin
