#include "platform/processes/SpawnSettings.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <limits>
#include <poll.h>
#include <unistd.h>

namespace tavrin {

namespace {

/// Pointers into strings that live elsewhere, ended by null.
std::vector<char*> pointersTo(const std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    for (const std::string& string : strings)
        pointers.push_back(const_cast<char*>(string.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

SpawnSettings::SpawnSettings() {
    posix_spawn_file_actions_init(&actions);
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

SpawnSettings::~SpawnSettings() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
}

void SpawnSettings::use(int descriptor, int target) {
    posix_spawn_file_actions_adddup2(&actions, descriptor, target);
}

void SpawnSettings::open(const char* path, int flags, int target) {
    posix_spawn_file_actions_addopen(&actions, target, path, flags, 0);
}

void SpawnSettings::shareTerminal() {
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
}

void SpawnSettings::startIn(const std::string& folder) {
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
}

int SpawnSettings::spawn(pid_t& child, const std::vector<std::string>& arguments,
                         const std::vector<std::string>& environment) {
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    const auto argumentPointers = pointersTo(arguments);
    return posix_spawnp(&child, argumentPointers[0], &actions, &attributes, argumentPointers.data(),
                        pointersTo(environment).data());
}

std::vector<std::string> SpawnSettings::ownEnvironment() {
    std::vector<std::string> entries;
    for (char** entry = environ; *entry != nullptr; ++entry)
        entries.emplace_back(*entry);
    return entries;
}

bool waitFor(int descriptor, short events, std::chrono::steady_clock::time_point end) {
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        const auto pause = std::clamp<std::int64_t>(left.count(), 0, std::numeric_limits<int>::max());
        pollfd waiting{descriptor, events, 0};
        const int news = ::poll(&waiting, 1, static_cast<int>(pause));
        if (news >= 0 || errno != EINTR)
            return news > 0;
    }
}

} // namespace tavrin
