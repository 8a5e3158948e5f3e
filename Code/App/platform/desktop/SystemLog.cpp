#include "platform/desktop/SystemLog.h"

#include "support/text/DisplayText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sys/socket.h>
#include <sys/un.h>

namespace tavrin {

namespace {

constexpr const char* daemonSocket = "/dev/log";
constexpr std::size_t batchSize = 64;
constexpr std::chrono::milliseconds longestWait(250);
constexpr std::size_t longestLine = 8 * 1024; // what log daemons take in one datagram
constexpr int priority = 1 * 8 + 5;           // facility user, level notice

std::atomic<SystemLog*> shared = nullptr;

/// "<13>Jan  2 03:04:05 tavrin[99]: line", the month in English whatever the locale.
std::string datagramOf(std::string_view line) {
    static constexpr std::array<const char*, 12> months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::string datagram =
        fmt::format("<{}>{} {:2} {:02}:{:02}:{:02} tavrin[{}]: {}", priority,
                    months.at(static_cast<std::size_t>(local.tm_mon)), local.tm_mday, local.tm_hour,
                    local.tm_min, local.tm_sec, ::getpid(), line.substr(0, longestLine));
    std::replace(datagram.begin(), datagram.end(), '\0', ' ');
    return datagram;
}

} // namespace

SystemLog::SystemLog() : socketPath(daemonSocket) {
    if (connect())
        target = Target::socket;
    else if (std::getenv("TAVRIN_LOG") != nullptr)
        target = Target::standardError;
}

SystemLog::SystemLog(std::string path) : socketPath(std::move(path)) {
    if (connect())
        target = Target::socket;
}

SystemLog::~SystemLog() {
    SystemLog* self = this;
    shared.compare_exchange_strong(self, nullptr);
    flush();
}

SystemLog& SystemLog::sharedInstance() {
    static SystemLog silent{Nothing()};
    SystemLog* const instance = shared.load(std::memory_order_acquire);
    return instance != nullptr ? *instance : silent;
}

void SystemLog::setSharedInstance(SystemLog* instance) { shared.store(instance, std::memory_order_release); }

bool SystemLog::connect() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socketPath.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, socketPath.c_str(), socketPath.size());
    Descriptor connected(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (!connected ||
        ::connect(connected.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return false;
    socket = std::move(connected);
    return true;
}

void SystemLog::write(std::string_view line) {
    if (!isActive())
        return;
    const std::lock_guard lock(mutex);
    const auto now = std::chrono::steady_clock::now();
    if (lines.empty())
        firstLineAt = now;
    lines.push_back(target == Target::socket ? datagramOf(line) : display::visible(line) + "\n");
    if (lines.size() >= batchSize || now - firstLineAt >= longestWait)
        sendGathered();
}

void SystemLog::flush() {
    const std::lock_guard lock(mutex);
    sendGathered();
}

void SystemLog::sendGathered() {
    if (target == Target::standardError) {
        writeToStandardError();
    } else {
        bool hasReconnected = false;
        for (std::size_t sent = 0; sent < lines.size();) {
            if (const std::size_t count = sendFrom(sent))
                sent += count;
            else if (hasReconnected || errno == EAGAIN || !connect())
                break;
            else
                hasReconnected = true; // the daemon has been started anew
        }
    }
    lines.clear();
}

/// The number of lines sent; 0 with errno set.
std::size_t SystemLog::sendFrom(std::size_t start) {
    std::array<iovec, batchSize> parts{};
    std::array<mmsghdr, batchSize> messages{};
    const std::size_t count = std::min(batchSize, lines.size() - start);
    for (std::size_t i = 0; i < count; ++i) {
        std::string& line = lines[start + i];
        parts[i] = {line.data(), line.size()};
        messages[i].msg_hdr.msg_iov = &parts[i];
        messages[i].msg_hdr.msg_iovlen = 1;
    }
    const int sent =
        ::sendmmsg(socket.get(), messages.data(), static_cast<unsigned>(count), MSG_DONTWAIT | MSG_NOSIGNAL);
    return sent > 0 ? static_cast<std::size_t>(sent) : 0;
}

void SystemLog::writeToStandardError() {
    std::string text;
    for (const std::string& line : lines)
        text += line;
    std::string_view left = text;
    while (!left.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, left.data(), left.size());
        if (written < 0 && errno != EINTR)
            return;
        left.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
}

} // namespace tavrin
