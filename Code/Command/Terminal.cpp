#include "Terminal.h"

#include "support/text/DisplayText.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace tavrin {

namespace {

constexpr const char* eraseLine = "\r\x1b[K";

void writeToError(std::string_view text) {
    OutputBuffer error(STDERR_FILENO);
    error.append(text);
}

constexpr std::size_t usualColumns = 80;

/// What the environment says; nonsense is passed over.
std::size_t columnsOfEnvironment() {
    const char* const text = std::getenv("COLUMNS");
    const std::int32_t columns = text ? text::intValue(text::fromBytes(text)) : 0;
    return columns > 0 ? static_cast<std::size_t>(columns) : usualColumns;
}

std::size_t columnsOf(int descriptor) {
    winsize size{};
    return ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col
                                                                          : columnsOfEnvironment();
}

} // namespace

Terminal::Terminal()
    : standardOutput(STDOUT_FILENO), outputIsForPeople(::isatty(STDOUT_FILENO) != 0),
      errorIsForPeople(::isatty(STDERR_FILENO) != 0), input(STDIN_FILENO) {}

void Terminal::askElsewhere() {
    ownTerminal = Descriptor(::open("/dev/tty", O_RDONLY | O_CLOEXEC));
    input = ownTerminal.get();
}

std::string Terminal::shown(std::string_view bytes) const {
    return outputIsForPeople ? display::visible(bytes) : std::string(bytes);
}

std::size_t Terminal::columns() const { return columnsOf(STDOUT_FILENO); }

std::size_t Terminal::errorColumns() const { return columnsOf(STDERR_FILENO); }

bool Terminal::paints(ColorChoice choice) const {
    if (choice != ColorChoice::automatic)
        return choice == ColorChoice::always;
    const char* const kind = std::getenv("TERM");
    const char* const refusal = std::getenv("NO_COLOR");
    return outputIsForPeople && kind && std::string_view(kind) != "dumb" && (!refusal || *refusal == '\0');
}

void Terminal::printNow(std::string_view text) {
    const std::lock_guard lock(writing);
    eraseProgress();
    standardOutput.append(text);
    standardOutput.flush();
}

ExitStatus Terminal::finish(ExitStatus status) {
    standardOutput.flush();
    const int error = standardOutput.error();
    if (error == 0)
        return status;
    if (error != EPIPE) // whoever closed the pipe has seen enough
        complain(fmt::format("tvrn: cannot write the output: {}", std::generic_category().message(error)));
    return status == ExitStatus::allWell ? ExitStatus::itemsFailed : status;
}

void Terminal::complain(std::string_view line) {
    const std::lock_guard lock(writing);
    eraseProgress();
    writeToError(shownInError(line) + '\n');
}

std::string Terminal::shownInError(std::string_view bytes) const {
    return errorIsForPeople ? display::visible(bytes) : std::string(bytes);
}

bool Terminal::canAsk() const { return errorIsForPeople && ::isatty(input) != 0; }

std::optional<std::string> Terminal::ask(std::string_view question, int interruption) {
    clearProgress();
    writeToError(shownInError(question));
    std::array<pollfd, 2> sources{{{input, POLLIN, 0}, {interruption, POLLIN, 0}}};
    while (::poll(sources.data(), sources.size(), -1) < 0 && errno == EINTR) {
    }
    if (sources[1].revents != 0) {
        writeToError("\n");
        return std::nullopt;
    }
    // A terminal hands over a line at a time.
    std::array<char, 1024> buffer;
    const ssize_t length = ::read(input, buffer.data(), buffer.size());
    if (length <= 0)
        return std::nullopt;
    const std::string_view line(buffer.data(), static_cast<std::size_t>(length));
    return std::string(line.substr(0, line.find('\n')));
}

void Terminal::showProgress(std::string_view line) {
    const std::lock_guard lock(writing);
    if (!errorIsForPeople || line == progressShown)
        return;
    progressShown = line;
    writeToError(eraseLine + shownInError(line).substr(0, columnsOf(STDERR_FILENO) - 1));
}

void Terminal::clearProgress() {
    const std::lock_guard lock(writing);
    eraseProgress();
}

void Terminal::eraseProgress() {
    if (!progressShown.empty())
        writeToError(eraseLine);
    progressShown.clear();
}

} // namespace tavrin
