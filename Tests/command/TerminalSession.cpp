#include "command/TerminalSession.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>

namespace tavrin::test {

namespace {

constexpr int longTime = 60'000; // milliseconds

} // namespace

TerminalSession::TerminalSession(const Workplace& workplace, const std::string& line) {
    terminal = Descriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!terminal || ::grantpt(terminal.get()) != 0 || ::unlockpt(terminal.get()) != 0)
        throw std::runtime_error("no terminal to be had");
    std::array<char, 256> name;
    ::ptsname_r(terminal.get(), name.data(), name.size());
    const Descriptor other(::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    process = workplace.start("exec " + line, other.get());
}

TerminalSession::~TerminalSession() {
    if (process != 0) {
        ::kill(process, SIGKILL);
        waitForStatus(process);
    }
}

bool TerminalSession::readMore() {
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
    while (readMore()) {
    }
    // Still there after a long silence: its status then tells so.
    ::kill(process, SIGKILL);
    return waitForStatus(std::exchange(process, 0));
}

} // namespace tavrin::test
