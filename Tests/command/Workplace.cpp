#include "command/Workplace.h"

#include "platform/desktop/Quoting.h"
#include "platform/processes/ChildProcess.h"

#include <csignal>
#include <poll.h>
#include <pty.h>

namespace tavrin::test {

Workplace::Workplace() {
    home.makeFolder("bin");
    home.link("bin/tvrn", TVRN_PROGRAM);
}

std::vector<std::string> Workplace::arguments(const std::string& line) const {
    std::vector<std::string> result = {"/usr/bin/env",
                                       "-i",
                                       "PATH=" + home.path("bin") + ":/usr/bin:/bin",
                                       "HOME=" + home.path(),
                                       "XDG_DATA_HOME=" + home.path("data"),
                                       "XDG_STATE_HOME=" + home.path("state"),
                                       "XDG_CONFIG_HOME=" + home.path("config"),
                                       "LC_ALL=C.UTF-8",
                                       "TERM=dumb",
                                       "DATA=" + home.path("data/Tavrin 9"),
                                       "TEST_DATA=" TAVRIN_TEST_DATA};
    for (const char* sanitizerOptions : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"})
        if (const char* value = std::getenv(sanitizerOptions))
            result.push_back(std::string(sanitizerOptions) + "=" + value);
    for (const std::string& argument :
         {std::string("/bin/bash"), std::string("-c"), "cd " + quotedForShell(work.path()) + "; " + line})
        result.push_back(argument);
    return result;
}

ProgramResult Workplace::run(const std::string& line) const {
    ChildProcess::Request request;
    request.arguments = arguments("exec 2>" + quotedForShell(home.path("errors")) + "; " + line);
    request.timeout = std::chrono::minutes(10);
    const ChildProcess::Result result = ChildProcess::run(request);
    return {result.exitStatus, result.output, home.read("errors")};
}

TerminalSession::TerminalSession(const Workplace& workplace, const std::string& line) {
    std::vector<std::string> arguments = workplace.arguments("exec " + line);
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    int master = -1;
    process = ::forkpty(&master, nullptr, nullptr, nullptr);
    if (process == 0) {
        ::execv(pointers.front(), pointers.data());
        ::_exit(127);
    }
    if (process < 0)
        throw std::runtime_error("no terminal to be had");
    terminal = Descriptor(master);
    ::fcntl(master, F_SETFD, FD_CLOEXEC);
}

TerminalSession::~TerminalSession() {
    if (process != 0)
        end();
}

bool TerminalSession::readMore() {
    constexpr int longTime = 60'000; // milliseconds
    pollfd source{terminal.get(), POLLIN, 0};
    if (::poll(&source, 1, longTime) <= 0)
        return false;
    std::array<char, 4096> buffer;
    const ssize_t length = ::read(terminal.get(), buffer.data(), buffer.size());
    if (length <= 0)
        return false; // the other side has been closed
    shown.append(buffer.data(), static_cast<std::size_t>(length));
    return true;
}

bool TerminalSession::await(std::string_view text) {
    std::size_t found = shown.find(text, awaited);
    while (found == std::string::npos) {
        if (!readMore())
            return false;
        found = shown.find(text, awaited);
    }
    awaited = found + text.size();
    return true;
}

void TerminalSession::type(std::string_view text) const {
    if (::write(terminal.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the terminal takes no input");
}

void TerminalSession::interrupt() const { ::kill(process, SIGINT); }

int TerminalSession::end() {
    while (readMore())
        continue;
    // Still there after a long silence: its status then tells so.
    ::kill(process, SIGKILL);
    const pid_t ended = std::exchange(process, 0);
    int status = 0;
    while (::waitpid(ended, &status, 0) < 0 && errno == EINTR)
        continue;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace tavrin::test
