#include "Editor.h"

#include "ExitStatus.h"
#include "platform/processes/SpawnSettings.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tavrin {

namespace {

constexpr std::chrono::seconds timeToEnd{2};
constexpr int commandNotFound = 127;
constexpr int commandNotRunnable = 126;

std::string reasonOf(int error) { return std::generic_category().message(error); }

std::string valueOf(const char* variable) {
    const char* const value = std::getenv(variable);
    return value ? value : "";
}

std::string editorOfEnvironment() {
    for (const char* variable : {"VISUAL", "EDITOR"})
        if (std::string value = valueOf(variable); !value.empty())
            return value;
    return "";
}

/// For the shell, which puts the file behind it.
std::string scriptFor(const std::string& command) {
    return command.empty() ? "if command -v editor >/dev/null; then editor \"$@\"; else vi \"$@\"; fi"
                           : command + " \"$@\"";
}

std::string endOf(int status, const std::string& command) {
    const std::string name = command.empty() ? "the editor" : fmt::format("the editor \"{}\"", command);
    if (WIFSIGNALED(status))
        return fmt::format("{} was ended by a signal: {}", name, ::strsignal(WTERMSIG(status)));
    const int code = WEXITSTATUS(status);
    if (code == 0)
        return "";
    return code == commandNotFound || code == commandNotRunnable
               ? fmt::format("{} could not be run", name)
               : fmt::format("{} has ended with status {}", name, code);
}

/// In words for the user.
std::string wordsFor(const EditorFile::Failure& failure) {
    using enum EditorFile::Fault;
    switch (failure.fault) {
    case unwritable:
        return fmt::format("the file of names cannot be written: {}", reasonOf(failure.error));
    case gone:
        return fmt::format("the file of names is gone: {}", reasonOf(failure.error));
    case isLink:
        return "the editor has put a link in the place of the file of names";
    case noFile:
        return "what the editor has left is no file";
    case unreadable:
        return fmt::format("the file of names cannot be read: {}", reasonOf(failure.error));
    case tooLong:
        return fmt::format("the file of names has more than {} bytes", failure.mostBytes);
    }
    return "";
}

} // namespace

Editor::Editor(InterruptHandler& handler) try
    : interrupts(handler), command(editorOfEnvironment()), file("tvrn", "edit.names") {
} catch (const std::system_error& error) {
    throw UsageError(
        fmt::format("there is no place for the file of names: {}", reasonOf(error.code().value())));
}

std::variant<std::string, Editor::Failure> Editor::edit(std::string_view text) {
    if (const auto failure = file.write(text))
        return Failure{wordsFor(*failure)};
    if (std::string failure = run(); !failure.empty())
        return Failure{std::move(failure)};
    auto left = file.read();
    if (const auto* failure = std::get_if<EditorFile::Failure>(&left))
        return Failure{wordsFor(*failure)};
    return std::get<std::string>(std::move(left));
}

/// What the editor is to be connected with: where its standard input or output is no terminal, the terminal
/// of the session all the same, if there is one.
std::string Editor::run() {
    SpawnSettings settings;
    settings.shareTerminal();
    const Descriptor terminal(::open("/dev/tty", O_RDWR | O_CLOEXEC));
    if (terminal && ::isatty(STDIN_FILENO) == 0)
        settings.use(terminal.get(), STDIN_FILENO);
    if (::isatty(STDOUT_FILENO) == 0)
        settings.use(terminal ? terminal.get() : STDERR_FILENO, STDOUT_FILENO);
    const InterruptHandler::ForegroundChild foreground(interrupts);
    pid_t child = 0;
    const int error = settings.spawn(
        child, {"/bin/sh", "-c", scriptFor(command), command.empty() ? "editor" : command, file.path()},
        SpawnSettings::ownEnvironment());
    return error != 0 ? fmt::format("no shell could be started: {}", reasonOf(error)) : waitFor(child);
}

std::string Editor::waitFor(int child) {
    const Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
    std::array<pollfd, 2> sources{{{process.get(), POLLIN, 0}, {interrupts.descriptor(), POLLIN, 0}}};
    while (process && ::poll(sources.data(), sources.size(), -1) < 0 && errno == EINTR) {
    }
    if (sources[0].revents == 0 && process) {
        ::kill(child, SIGTERM);
        if (!tavrin::waitFor(process.get(), POLLIN, std::chrono::steady_clock::now() + timeToEnd))
            ::kill(child, SIGKILL);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return endOf(status, command);
}

} // namespace tavrin
