#include "platform/ChildProcess.h"

#include "platform/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <limits>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrin {

namespace {

using Clock = std::chrono::steady_clock;

/// Pointers into strings that live elsewhere, ended by null.
std::vector<char*> pointersTo(const std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    for (const std::string& string : strings)
        pointers.push_back(const_cast<char*>(string.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentWith(const std::map<std::string, std::string>& additions) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        if (!additions.contains(std::string(text.substr(0, text.find('=')))))
            result.emplace_back(text);
    }
    for (const auto& [name, value] : additions)
        result.push_back(name + "=" + value);
    return result;
}

/// What the child is started with.
class SpawnSettings {
  public:
    explicit SpawnSettings(int output) {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
        posix_spawnattr_init(&attributes);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        sigaddset(&signals, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        posix_spawnattr_setpgroup(&attributes, 0);
        posix_spawnattr_setflags(&attributes,
                                 POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    ~SpawnSettings() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    int spawn(pid_t& child, const ChildProcess::Request& request) {
        const auto environment = environmentWith(request.environment);
        const auto arguments = pointersTo(request.arguments);
        return posix_spawnp(&child, arguments[0], &actions, &attributes, arguments.data(),
                            pointersTo(environment).data());
    }

  private:
    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

/// Waits until the descriptor has something to tell; false when the end is past.
bool waitFor(int descriptor, Clock::time_point end) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        pollfd waiting{descriptor, POLLIN, 0};
        const auto pause = std::clamp<std::int64_t>(left.count(), 0, std::numeric_limits<int>::max());
        const int news = ::poll(&waiting, 1, static_cast<int>(pause));
        if (news >= 0 || errno != EINTR)
            return news > 0;
    }
}

/// Reads to the end of the output; false when the time is over.
bool readOutput(int pipe, std::size_t limit, Clock::time_point end, ChildProcess::Result& result) {
    std::array<char, 16 * 1024> buffer;
    while (waitFor(pipe, end)) {
        const ssize_t got = ::read(pipe, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return true;
        const std::size_t room = limit - result.output.size();
        const auto count = static_cast<std::size_t>(got);
        result.output.append(buffer.data(), std::min(room, count));
        result.outputWasCut = result.outputWasCut || count > room;
    }
    return false;
}

/// Waits for the end of the child, or ends it, and reaps it.
void finish(pid_t child, bool outputIsRead, Clock::time_point end, ChildProcess::Result& result) {
    const Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
    result.timedOut = !outputIsRead || (process && !waitFor(process.get(), end));
    if (result.timedOut)
        ::kill(-child, SIGKILL);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    if (WIFEXITED(status))
        result.exitStatus = WEXITSTATUS(status);
}

/// A NUL would cut an argument short.
bool isSound(const std::vector<std::string>& arguments) {
    return !arguments.empty() &&
           std::none_of(arguments.begin(), arguments.end(),
                        [](const std::string& text) { return text.find('\0') != std::string::npos; });
}

} // namespace

ChildProcess::Result ChildProcess::run(const Request& request) {
    Result result;
    if (!isSound(request.arguments)) {
        result.error = EINVAL;
        return result;
    }
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        result.error = errno;
        return result;
    }
    const Descriptor output(ends[0]);
    Descriptor input(ends[1]);
    const auto end = Clock::now() + request.timeout;
    pid_t child = 0;
    result.error = SpawnSettings(input.get()).spawn(child, request);
    input.reset();
    if (result.error == 0)
        finish(child, readOutput(output.get(), request.outputLimit, end, result), end, result);
    return result;
}

} // namespace tavrin
