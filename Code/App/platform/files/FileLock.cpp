#include "platform/files/FileLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <thread>

namespace tavrin {

std::optional<FileLock> FileLock::take(const std::string& path, std::chrono::milliseconds patience) {
    constexpr std::chrono::milliseconds pause(5);
    Descriptor file(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    if (!file)
        return std::nullopt;
    const auto end = std::chrono::steady_clock::now() + patience;
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR)
            continue;
        if (errno != EWOULDBLOCK)
            break;
        if (std::chrono::steady_clock::now() >= end)
            return std::nullopt;
        std::this_thread::sleep_for(pause);
    }
    return FileLock(std::move(file));
}

} // namespace tavrin
