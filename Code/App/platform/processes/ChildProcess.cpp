#include "platform/processes/ChildProcess.h"

#include "platform/files/Descriptor.h"
#include "platform/processes/SpawnSettings.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavrin {

namespace {

using Clock = std::chrono::steady_clock;

std::vector<std::string> environmentWith(const std::map<std::string, std::string>& additions) {
    std::vector<std::string> result = SpawnSettings::ownEnvironment();
    std::erase_if(result, [&](const std::string& entry) {
        return additions.contains(entry.substr(0, entry.find('=')));
    });
    for (const auto& [name, value] : additions)
        result.push_back(name + "=" + value);
    return result;
}

int spawn(pid_t& child, int output, const ChildProcess::Request& request) {
    SpawnSettings settings;
    settings.open("/dev/null", O_RDONLY, STDIN_FILENO);
    settings.use(output, STDOUT_FILENO);
    settings.open("/dev/null", O_WRONLY, STDERR_FILENO);
    return settings.spawn(child, request.arguments, environmentWith(request.environment));
}

/// Reads to the end of the output; false when the time is over.
bool readOutput(int pipe, std::size_t limit, Clock::time_point end, ChildProcess::Result& result) {
    std::array<char, 16 * 1024> buffer;
    while (waitFor(pipe, POLLIN, end)) {
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
    result.timedOut = !outputIsRead || (process && !waitFor(process.get(), POLLIN, end));
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
    result.error = spawn(child, input.get(), request);
    input.reset();
    if (result.error == 0)
        finish(child, readOutput(output.get(), request.outputLimit, end, result), end, result);
    return result;
}

} // namespace tavrin
