#include "platform/processes/ToolProcess.h"

#include "platform/processes/SpawnSettings.h"
#include "support/text/PathParts.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <vector>

namespace tavrin {

namespace {

bool makePipe(Descriptor& reading, Descriptor& writing) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return false;
    reading = Descriptor(ends[0]);
    writing = Descriptor(ends[1]);
    return true;
}

/// Concerns this end of a pipe alone: the child's end keeps blocking.
void stopBlocking(const Descriptor& end) { ::fcntl(end.get(), F_SETFL, O_NONBLOCK); }

std::vector<std::string> cleanEnvironment() {
    std::vector<std::string> result = {"LC_ALL=C.UTF-8", "PATH=/usr/local/bin:/usr/bin:/bin"};
    if (const char* zone = std::getenv("TZ"))
        result.push_back(std::string("TZ=") + zone);
    return result;
}

bool mayComeLater() { return errno == EAGAIN || errno == EINTR; }

/// Writing into a pipe that nobody reads must not end this program.
class WithoutPipeSignal {
  public:
    WithoutPipeSignal() {
        sigemptyset(&signals);
        sigaddset(&signals, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &signals, &former);
    }
    ~WithoutPipeSignal() {
        const timespec noTime{};
        while (!wasPending && sigtimedwait(&signals, nullptr, &noTime) < 0 && errno == EINTR)
            continue;
        pthread_sigmask(SIG_SETMASK, &former, nullptr);
    }
    WithoutPipeSignal(const WithoutPipeSignal&) = delete;
    WithoutPipeSignal& operator=(const WithoutPipeSignal&) = delete;

  private:
    sigset_t signals{};
    sigset_t former{};
    bool wasPending = false;
};

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

} // namespace

std::unique_ptr<ToolProcess> ToolProcess::start(const std::string& program, Protocol protocol, int& error) {
    Descriptor childInput;
    Descriptor childOutput;
    Descriptor requests;
    Descriptor answers;
    if (!makePipe(childInput, requests) || !makePipe(answers, childOutput)) {
        error = errno;
        return nullptr;
    }
    SpawnSettings settings;
    settings.use(childInput.get(), STDIN_FILENO);
    settings.use(childOutput.get(), STDOUT_FILENO);
    settings.startIn(std::string(folderPrefix(program)));
    pid_t child = 0;
    error = settings.spawn(child, {program}, cleanEnvironment());
    if (error != 0)
        return nullptr;
    stopBlocking(requests);
    stopBlocking(answers);
    return std::unique_ptr<ToolProcess>(
        new ToolProcess(child, std::move(requests), std::move(answers), protocol));
}

ToolProcess::ToolProcess(pid_t child, Descriptor requests, Descriptor answers, Protocol protocol)
    : process(child), input(std::move(requests)), output(std::move(answers)), terms(protocol) {}

ToolProcess::~ToolProcess() {
    input.reset();
    output.reset();
    ::kill(-process, SIGKILL);
    ::kill(process, SIGKILL);
    while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR)
        continue;
}

/// Whether there is output that belongs to no request. White space behind the last end marker doesn't count.
bool ToolProcess::hasSpoken() {
    std::array<char, 256> buffer;
    for (;;) {
        const ssize_t got = ::read(output.get(), buffer.data(), buffer.size());
        if (got <= 0)
            return false;
        if (!isBlank({buffer.data(), static_cast<std::size_t>(got)}))
            return true;
    }
}

ToolProcess::Outcome ToolProcess::send(const std::string& line, Clock::time_point end) {
    const WithoutPipeSignal guard;
    std::size_t sent = 0;
    while (sent < line.size()) {
        const ssize_t count = ::write(input.get(), line.data() + sent, line.size() - sent);
        if (count >= 0)
            sent += static_cast<std::size_t>(count);
        else if (!mayComeLater())
            return Outcome::ended;
        else if (!waitFor(input.get(), POLLOUT, end))
            return Outcome::overdue;
    }
    return Outcome::answered;
}

ToolProcess::Outcome ToolProcess::receive(std::string& answer, Clock::time_point end) {
    std::array<char, 64 * 1024> buffer;
    const std::size_t overlap = terms.endMarker.size() - 1;
    while (waitFor(output.get(), POLLIN, end)) {
        const ssize_t got = ::read(output.get(), buffer.data(), buffer.size());
        if (got < 0 && mayComeLater())
            continue;
        if (got <= 0)
            return Outcome::ended;
        const std::size_t searched = answer.size() - std::min(answer.size(), overlap);
        answer.append(buffer.data(), static_cast<std::size_t>(got));
        const std::size_t marker = answer.find(terms.endMarker, searched);
        if (marker != std::string::npos) {
            const bool isAll = isBlank(std::string_view(answer).substr(marker + terms.endMarker.size()));
            answer.resize(marker);
            return isAll ? Outcome::answered : Outcome::unasked;
        }
        if (answer.size() > terms.answerLimit)
            return Outcome::oversized;
    }
    return Outcome::overdue;
}

ToolProcess::Outcome ToolProcess::ask(const std::string& line, std::string& answer) {
    answer.clear();
    if (hasSpoken())
        return Outcome::unasked;
    const auto end = Clock::now() + terms.timeLimit;
    const Outcome outcome = send(line + "\n", end);
    return outcome == Outcome::answered ? receive(answer, end) : outcome;
}

} // namespace tavrin
