#include "presentation/SessionEnd.h"

#include <QApplication>
#include <QEvent>
#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tavrin {

namespace {

constexpr std::array endingSignals{SIGTERM, SIGINT, SIGHUP};

/// A pipe from the signals' handler, which may do next to nothing, to the event loop. It stays for good: a
/// handler may be under way while its receiver goes.
struct SignalPipe {
    SignalPipe() {
        if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
            ends = {-1, -1};
    }
    std::array<int, 2> ends{};
};

std::atomic<int> writeEnd{-1};

void passOn(int) {
    const int saved = errno;
    const char mark = 0;
    [[maybe_unused]] const auto written = write(writeEnd.load(), &mark, 1);
    errno = saved;
}

void setHandler(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int signal : endingSignals)
        sigaction(signal, &action, nullptr);
}

} // namespace

SessionEnd::SessionEnd() {
    connect(qApp, &QGuiApplication::commitDataRequest, this, &SessionEnd::mayEnd);
    qApp->installEventFilter(this);
    static const SignalPipe signalPipe;
    if (signalPipe.ends[0] < 0)
        return;
    writeEnd = signalPipe.ends[1];
    notifier = std::make_unique<QSocketNotifier>(signalPipe.ends[0], QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &SessionEnd::signalArrived);
    setHandler(passOn);
}

SessionEnd::~SessionEnd() { setHandler(SIG_DFL); }

void SessionEnd::signalArrived() {
    char marks[16];
    while (read(static_cast<int>(notifier->socket()), marks, sizeof marks) > 0) {
    }
    emit ends();
}

bool SessionEnd::eventFilter(QObject* watched, QEvent* event) {
    if (watched != qApp || event->type() != QEvent::Quit)
        return QObject::eventFilter(watched, event);
    // The windows are not asked: one that shows a question would hold up the end of the session.
    emit ends();
    return true;
}

} // namespace tavrin
