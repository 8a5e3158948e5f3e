#include "InterruptHandler.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace tavrin {

namespace {

sigset_t handledSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // What the caller has chosen to ignore (nohup, a background job) stays ignored.
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_IGN)
            sigaddset(&set, signal);
    }
    return set;
}

int checked(int descriptor) {
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "signals");
    return descriptor;
}

void announce(const Descriptor& descriptor) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(descriptor.get(), &one, sizeof one);
}

} // namespace

InterruptHandler::InterruptHandler(std::function<void()> action) : whenInterrupted(std::move(action)) {
    const sigset_t set = handledSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    signals = Descriptor(checked(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK)));
    announcement = Descriptor(checked(::eventfd(0, EFD_CLOEXEC)));
    ending = Descriptor(checked(::eventfd(0, EFD_CLOEXEC)));
    thread = std::thread([this] { waitForSignals(); });
}

InterruptHandler::~InterruptHandler() {
    announce(ending);
    thread.join();
}

InterruptHandler::ForegroundChild::ForegroundChild(InterruptHandler& owner) : handler(owner) {
    const std::lock_guard lock(handler.taking);
    handler.leavesKeyboard = true;
}

/// What was typed before and has not been taken yet was for the child too.
InterruptHandler::ForegroundChild::~ForegroundChild() {
    const std::lock_guard lock(handler.taking);
    sigset_t typed;
    sigemptyset(&typed);
    sigaddset(&typed, SIGINT);
    const timespec atOnce{};
    while (::sigtimedwait(&typed, nullptr, &atOnce) > 0) {
    }
    handler.leavesKeyboard = false;
}

bool InterruptHandler::takeSignal() {
    const std::lock_guard lock(taking);
    signalfd_siginfo signal;
    return ::read(signals.get(), &signal, sizeof signal) == sizeof signal &&
           (signal.ssi_signo != SIGINT || !leavesKeyboard);
}

void InterruptHandler::waitForSignals() {
    std::array<pollfd, 2> sources{{{signals.get(), POLLIN, 0}, {ending.get(), POLLIN, 0}}};
    while (true) {
        if (::poll(sources.data(), sources.size(), -1) < 0)
            continue;
        if (sources[1].revents != 0)
            return;
        if (!takeSignal() || interrupted.exchange(true))
            continue;
        announce(announcement);
        whenInterrupted();
    }
}

} // namespace tavrin
