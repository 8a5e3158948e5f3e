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
#include <filesystem>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tavrin {

namespace {

constexpr const char* fileName = "edit.names";
constexpr std::size_t usualLimit = 100'000'000; // bytes
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

std::vector<std::string> environment() {
    std::vector<std::string> entries;
    for (char** entry = environ; *entry != nullptr; ++entry)
        entries.emplace_back(*entry);
    return entries;
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

} // namespace

Editor::Editor(InterruptHandler& handler) : interrupts(handler), command(editorOfEnvironment()) {
    int error = ENOENT;
    for (const std::string& place : {valueOf("XDG_RUNTIME_DIR"), valueOf("TMPDIR"), std::string("/tmp")}) {
        if (!place.starts_with('/'))
            continue;
        path = place + "/tvrn-XXXXXX";
        if (::mkdtemp(path.data())) { // which only its owner may enter
            folder = Descriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            return;
        }
        error = errno;
        path.clear();
    }
    throw UsageError(fmt::format("there is no place for the file of names: {}", reasonOf(error)));
}

/// With what the editor has left beside the file.
Editor::~Editor() {
    std::error_code ignored;
    std::vector<std::filesystem::path> entries;
    for (std::filesystem::directory_iterator entry(path, ignored), end; !ignored && entry != end;
         entry.increment(ignored))
        entries.push_back(entry->path());
    for (const auto& entry : entries)
        std::filesystem::remove(entry, ignored);
    std::filesystem::remove(path, ignored);
}

std::variant<std::string, Editor::Failure> Editor::edit(std::string_view text) {
    if (const int error = write(text))
        return Failure{fmt::format("the file of names cannot be written: {}", reasonOf(error))};
    if (std::string failure = run(); !failure.empty())
        return Failure{std::move(failure)};
    return read(std::max(usualLimit, 4 * text.size()));
}

int Editor::write(std::string_view text) const {
    ::unlinkat(folder.get(), fileName, 0);
    const Descriptor file(::openat(folder.get(), fileName,
                                   O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file)
        return errno;
    while (!text.empty()) {
        const ssize_t written = ::write(file.get(), text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return errno;
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return 0;
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
        child,
        {"/bin/sh", "-c", scriptFor(command), command.empty() ? "editor" : command, path + "/" + fileName},
        environment());
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

std::variant<std::string, Editor::Failure> Editor::read(std::size_t mostBytes) const {
    const Descriptor file(
        ::openat(folder.get(), fileName, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file)
        return Failure{errno == ELOOP ? "the editor has put a link in the place of the file of names"
                                      : fmt::format("the file of names is gone: {}", reasonOf(errno))};
    struct stat found {};
    if (::fstat(file.get(), &found) != 0 || !S_ISREG(found.st_mode))
        return Failure{"what the editor has left is no file"};
    std::string text;
    std::array<char, 64 * 1024> buffer;
    for (;;) {
        const ssize_t length = ::read(file.get(), buffer.data(), buffer.size());
        if (length == 0)
            return text;
        if (length < 0 && errno != EINTR)
            return Failure{fmt::format("the file of names cannot be read: {}", reasonOf(errno))};
        text.append(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
        if (text.size() > mostBytes)
            return Failure{fmt::format("the file of names has more than {} bytes", mostBytes)};
    }
}

} // namespace tavrin
