#pragma once

#include <chrono>
#include <spawn.h>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tavrin {

/// What a child process is started with. It gets a process group of its own, no blocked signals, the default
/// treatment of SIGPIPE, and none of this program's descriptors but those given here and standard error.
class SpawnSettings {
  public:
    SpawnSettings();
    ~SpawnSettings();
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    /// The child's descriptor `target` is that of this program, or the opened file.
    void use(int descriptor, int target);
    void open(const char* path, int flags, int target);
    /// The child belongs to this program's process group, so that it may use its terminal and gets its keys.
    void shareTerminal();
    void startIn(const std::string& folder);

    /// 0 or errno. The program is sought in PATH when it has no slash. `environment` holds "NAME=value".
    [[nodiscard]] int spawn(pid_t& child, const std::vector<std::string>& arguments,
                            const std::vector<std::string>& environment);

    /// That of this program, as `spawn` takes it.
    [[nodiscard]] static std::vector<std::string> ownEnvironment();

  private:
    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

/// Waits until one of these poll events, or an error, is there for the descriptor; false when the end is
/// past.
[[nodiscard]] bool waitFor(int descriptor, short events, std::chrono::steady_clock::time_point end);

} // namespace tavrin
