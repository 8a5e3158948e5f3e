#include "platform/desktop/UserFolders.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace tavrin {

namespace {

std::string withoutEndingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

/// The absolute path in a variable of the environment, else the other.
std::string pathFrom(const char* variable, const std::string& otherwise) {
    const char* value = std::getenv(variable);
    return withoutEndingSlashes(value != nullptr && *value == '/' ? value : otherwise);
}

std::string accountHome() {
    char buffer[4096];
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer, sizeof buffer, &found) != 0 || found == nullptr)
        return "/";
    return found->pw_dir;
}

} // namespace

std::string UserFolders::home() {
    const char* value = std::getenv("HOME");
    return value != nullptr && *value == '/' ? withoutEndingSlashes(value) : accountHome();
}

std::string UserFolders::configuration() { return pathFrom("XDG_CONFIG_HOME", home() + "/.config"); }

std::string UserFolders::data() { return pathFrom("XDG_DATA_HOME", home() + "/.local/share"); }

std::string UserFolders::state() { return pathFrom("XDG_STATE_HOME", home() + "/.local/state"); }

} // namespace tavrin
