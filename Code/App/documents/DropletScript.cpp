#include "documents/DropletScript.h"

#include "platform/desktop/Quoting.h"
#include "platform/desktop/UserFolders.h"
#include "platform/files/FileSystem.h"

#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrin {

namespace {

constexpr std::string_view start = "#!/bin/sh\n# X-Tavrin-Droplet=";
constexpr std::size_t longestScript = 64 * 1024;
constexpr int mostNumbers = 100;

/// In one line, whatever the path holds.
std::string inHexadecimal(std::string_view bytes) {
    std::string result;
    for (const char c : bytes)
        result += fmt::format("{:02x}", static_cast<unsigned char>(c));
    return result;
}

std::optional<std::string> fromHexadecimal(std::string_view digits) {
    std::string result;
    for (; digits.size() >= 2; digits.remove_prefix(2)) {
        const std::string byte(digits.substr(0, 2));
        if (byte.find_first_not_of("0123456789abcdef") != std::string::npos)
            return std::nullopt;
        result += static_cast<char>(std::stoi(byte, nullptr, 16));
    }
    return digits.empty() && result.starts_with('/') ? std::optional(result) : std::nullopt;
}

/// The bundle of a script of ours; absent for every other file.
std::optional<std::string> bundleOf(const std::string& script) {
    struct stat status {};
    std::string content;
    if (::lstat(script.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
        FileSystem::sharedInstance().readFile(script, content, longestScript) != 0 ||
        !content.starts_with(start))
        return std::nullopt;
    const std::string_view mark = std::string_view(content).substr(start.size());
    return fromHexadecimal(mark.substr(0, mark.find('\n')));
}

bool isThere(const std::string& path) { return !FileSystem::sharedInstance().isAbsent(path); }

bool mayBeOnAbsentMedium(const std::string& path) {
    constexpr std::array<std::string_view, 3> places{"/media/", "/run/media/", "/mnt/"};
    for (const std::string_view place : places)
        if (path.starts_with(place))
            return !isThere(DropletBundle(path).enclosingFolder());
    return false;
}

bool isGone(const std::string& bundle) { return !isThere(bundle) && !mayBeOnAbsentMedium(bundle); }

bool isInPath(std::string_view name) {
    const char* const path = std::getenv("PATH");
    std::string_view rest = path ? path : "";
    while (!rest.empty()) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        if (!folder.empty() && ::access(fmt::format("{}/{}", folder, name).c_str(), X_OK) == 0)
            return true;
        rest.remove_prefix(std::min(rest.size(), folder.size() + 1));
    }
    return false;
}

bool isInUse() { return isThere(UserFolders::data() + "/nautilus") || isInPath("nautilus"); }

/// The scripts that were made for a droplet, and where a new one may be written.
std::string freePlace(const DropletBundle& bundle) {
    for (int number = 1; number <= mostNumbers; ++number) {
        const std::string path =
            number == 1 ? fmt::format("{}/{}", DropletScript::folder(), bundle.name())
                        : fmt::format("{}/{} {}", DropletScript::folder(), bundle.name(), number);
        if (!isThere(path))
            return path;
        const std::optional<std::string> owner = bundleOf(path);
        if (owner && (*owner == bundle.path() || isGone(*owner)))
            return path;
    }
    return {};
}

} // namespace

DropletScript::DropletScript(DropletBundle droplet, std::string programPath)
    : bundle(std::move(droplet)), program(std::move(programPath)) {}

std::string DropletScript::text() const {
    // The list of paths is split at its line feeds. Where a name holds one, the pieces would be paths of
    // other files, so then the names that the file manager gives for the present folder count.
    return fmt::format(R"({}{}
# Renames the selected files by a droplet. Made by Tavrin, and removed when the droplet is gone.
[ $# -gt 0 ] || exit 0
lines=$(printf '%s' "$NAUTILUS_SCRIPT_SELECTED_FILE_PATHS" | LC_ALL=C grep -c .)
if [ "$lines" -eq $# ]; then
    set -f
    IFS='
'
    set -- $NAUTILUS_SCRIPT_SELECTED_FILE_PATHS
fi
exec {} --droplet {} -- "$@"
)",
                       start, inHexadecimal(bundle.path()), quotedForShell(program),
                       quotedForShell(bundle.path()));
}

void DropletScript::write() const {
    if (!isInUse())
        return;
    std::error_code error;
    std::filesystem::create_directories(folder(), error);
    const std::string path = freePlace(bundle);
    if (!path.empty() && FileSystem::sharedInstance().writeFileAtomically(path, text()) == 0)
        static_cast<void>(::chmod(path.c_str(), 0755));
}

void DropletScript::removeOrphans() {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder(), error), end; !error && entry != end;
         entry.increment(error)) {
        const std::optional<std::string> owner = bundleOf(entry->path().string());
        if (owner && isGone(*owner))
            ::unlink(entry->path().c_str());
    }
}

std::string DropletScript::folder() { return UserFolders::data() + "/nautilus/scripts"; }

} // namespace tavrin
