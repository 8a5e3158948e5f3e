#include "presentation/start/SocketLink.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tavrin {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience(15);              // the start of the window included
constexpr std::chrono::milliseconds betweenQuestions(20); // to a window that does not listen yet
constexpr char acknowledgement = '.';

std::optional<sockaddr_un> addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return std::nullopt;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

/// Paths one after the other, each with a NUL at its end, and another behind the last.
std::string messageOf(const std::vector<std::string>& paths) {
    std::string message;
    for (const std::string& path : paths)
        message.append(path).push_back('\0');
    message.push_back('\0');
    return message;
}

bool isWhole(const QByteArray& message) {
    return message.endsWith('\0') && (message.size() == 1 || message[message.size() - 2] == '\0');
}

std::vector<std::string> pathsOf(const QByteArray& message) {
    std::vector<std::string> paths;
    for (qsizetype start = 0; start < message.size();) {
        const qsizetype end = message.indexOf('\0', start);
        if (message[start] == '/')
            paths.emplace_back(message.constData() + start, static_cast<std::size_t>(end - start));
        start = end + 1;
    }
    return paths;
}

bool sendAll(int socket, const std::string& message) {
    for (std::size_t sent = 0; sent < message.size();) {
        const ssize_t count = ::send(socket, message.data() + sent, message.size() - sent, MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        sent += static_cast<std::size_t>(count);
    }
    return ::shutdown(socket, SHUT_WR) == 0;
}

bool isAcknowledged(int socket) {
    pollfd answer{socket, POLLIN, 0};
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(patience);
    char byte = 0;
    return ::poll(&answer, 1, static_cast<int>(milliseconds.count())) == 1 &&
           ::recv(socket, &byte, 1, 0) == 1 && byte == acknowledgement;
}

} // namespace

SocketLink::Descriptor::~Descriptor() {
    if (number >= 0)
        ::close(number);
}

SocketLink::Descriptor& SocketLink::Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(number, other.number);
    return *this;
}

SocketLink::SocketLink(std::string runtimeFolder)
    : socketPath(runtimeFolder + "/net.calderwick.tavrin.socket"),
      lockPath(runtimeFolder + "/net.calderwick.tavrin.lock") {}

SocketLink::~SocketLink() {
    if (listener.isOpen())
        ::unlink(socketPath.c_str());
}

WindowLink::Role SocketLink::join(const std::vector<std::string>& paths) {
    const Clock::time_point end = Clock::now() + patience;
    while (Clock::now() < end) {
        Descriptor file(::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
        if (file.isOpen() && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
            lock = std::move(file);
            return listen() ? Role::window : Role::unanswered;
        }
        if (!file.isOpen())
            break;
        if (const std::optional<bool> isTaken = handOver(paths))
            return *isTaken ? Role::handedOver : Role::unanswered;
        // It has the lock but does not listen yet, or has just ended.
        std::this_thread::sleep_for(betweenQuestions);
    }
    return Role::unanswered;
}

std::optional<bool> SocketLink::handOver(const std::vector<std::string>& paths) const {
    const std::optional<sockaddr_un> address = addressOf(socketPath);
    if (!address)
        return false;
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0)
        return std::nullopt;
    return sendAll(socket.get(), messageOf(paths)) && isAcknowledged(socket.get());
}

bool SocketLink::listen() {
    const std::optional<sockaddr_un> address = addressOf(socketPath);
    if (!address)
        return false;
    ::unlink(socketPath.c_str());
    listener = Descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (::bind(listener.get(), reinterpret_cast<const sockaddr*>(&*address), sizeof *address) != 0 ||
        ::listen(listener.get(), SOMAXCONN) != 0)
        return false;
    notifier = std::make_unique<QSocketNotifier>(listener.get(), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { accept(); });
    return true;
}

void SocketLink::accept() {
    Descriptor socket(::accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!socket.isOpen())
        return;
    const int number = socket.get();
    auto reading = std::make_unique<QSocketNotifier>(number, QSocketNotifier::Read);
    QObject::connect(reading.get(), &QSocketNotifier::activated, reading.get(),
                     [this, number] { read(number); });
    callers[number] = {std::move(socket), std::move(reading), {}};
}

void SocketLink::read(int number) {
    Caller& caller = callers.at(number);
    char buffer[65536];
    const ssize_t count = ::recv(number, buffer, sizeof buffer, 0);
    if (count > 0) {
        caller.content.append(buffer, count);
        return;
    }
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count == 0 && isWhole(caller.content)) {
        deliver(pathsOf(caller.content));
        static_cast<void>(::send(number, &acknowledgement, 1, MSG_NOSIGNAL));
    }
    // This runs in a call of its notifier.
    caller.notifier->setEnabled(false);
    caller.notifier.release()->deleteLater();
    callers.erase(number);
}

} // namespace tavrin
