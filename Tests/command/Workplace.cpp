#include "command/Workplace.h"

#include "platform/files/Descriptor.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <system_error>
#include <vector>

namespace tavrin::test {

namespace {

void check(int error, const char* what) {
    if (error != 0)
        throw std::system_error(error, std::generic_category(), what);
}

struct Pipe {
    Pipe() {
        std::array<int, 2> ends;
        check(::pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2");
        reading = Descriptor(ends[0]);
        writing = Descriptor(ends[1]);
    }
    Descriptor reading;
    Descriptor writing;
};

/// Reads both to their ends, whichever has something.
void drain(const Pipe& first, std::string& firstText, const Pipe& second, std::string& secondText) {
    std::array<pollfd, 2> sources{{{first.reading.get(), POLLIN, 0}, {second.reading.get(), POLLIN, 0}}};
    const std::array<std::string*, 2> texts{&firstText, &secondText};
    while (sources[0].fd >= 0 || sources[1].fd >= 0) {
        ::poll(sources.data(), sources.size(), -1);
        for (std::size_t i = 0; i < sources.size(); ++i) {
            if (sources[i].fd < 0 || sources[i].revents == 0)
                continue;
            std::array<char, 65536> buffer;
            const ssize_t length = ::read(sources[i].fd, buffer.data(), buffer.size());
            if (length > 0)
                texts[i]->append(buffer.data(), static_cast<std::size_t>(length));
            else if (length == 0 || errno != EINTR)
                sources[i].fd = -1;
        }
    }
}

} // namespace

Workplace::Workplace() {
    home.makeFolder("bin");
    home.link("bin/tvrn", TVRN_PROGRAM);
}

pid_t Workplace::spawn(const std::string& line, int input, int output, int error, bool inSession) const {
    std::vector<std::string> environment = {"PATH=" + home.path("bin") + ":/usr/bin:/bin",
                                            "HOME=" + home.path(),
                                            "XDG_DATA_HOME=" + home.path("data"),
                                            "XDG_STATE_HOME=" + home.path("state"),
                                            "XDG_CONFIG_HOME=" + home.path("config"),
                                            "LC_ALL=C.UTF-8",
                                            "TERM=dumb",
                                            "DATA=" + dataFolder(),
                                            "TEST_DATA=" TAVRIN_TEST_DATA};
    for (const char* sanitizerOptions : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"}) {
        if (const char* value = std::getenv(sanitizerOptions))
            environment.push_back(std::string(sanitizerOptions) + "=" + value);
    }
    std::vector<char*> variables;
    for (std::string& variable : environment)
        variables.push_back(variable.data());
    variables.push_back(nullptr);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addchdir_np(&files, work.path().c_str());
    posix_spawn_file_actions_adddup2(&files, input, 0);
    posix_spawn_file_actions_adddup2(&files, output, 1);
    posix_spawn_file_actions_adddup2(&files, error, 2);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    if (inSession)
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    std::string shell = "bash", option = "-c", text = line;
    std::array<char*, 4> arguments{shell.data(), option.data(), text.data(), nullptr};
    pid_t process = 0;
    const int failure =
        ::posix_spawn(&process, "/bin/bash", &files, &attributes, arguments.data(), variables.data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    check(failure, "posix_spawn");
    return process;
}

ProgramResult Workplace::run(const std::string& line) const {
    Pipe output;
    Pipe error;
    const Descriptor nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    const pid_t process = spawn(line, nothing.get(), output.writing.get(), error.writing.get(), false);
    output.writing.reset();
    error.writing.reset();
    ProgramResult result;
    drain(output, result.output, error, result.error);
    result.status = waitForStatus(process);
    return result;
}

pid_t Workplace::start(const std::string& line, int terminal) const {
    return spawn(line, terminal, terminal, terminal, true);
}

int waitForStatus(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "waitpid");
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace tavrin::test
