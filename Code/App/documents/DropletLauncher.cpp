#include "documents/DropletLauncher.h"

#include "platform/desktop/Quoting.h"
#include "platform/files/FileSystem.h"
#include "platform/processes/ChildProcess.h"
#include "support/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string_view>
#include <sys/stat.h>
#include <system_error>

namespace tavrin {

namespace {

constexpr std::string_view markKey = "X-Tavrin-Droplet=";
constexpr std::size_t longestLauncher = 64 * 1024;
constexpr std::chrono::seconds patience(2); // with each of the programs that set marks
constexpr std::size_t checksumLength = 64;

std::string shownName(std::string_view bytes) {
    bool isBehindHighSurrogate = false;
    std::u16string units = text::fromBytes(bytes);
    for (char16_t& unit : units) {
        if (unit >= 0xDC00 && unit <= 0xDFFF && !isBehindHighSurrogate)
            unit = u'\uFFFD';
        isBehindHighSurrogate = unit >= 0xD800 && unit <= 0xDBFF;
    }
    return text::toUtf8(units);
}

/// The value of the mark; absent where the file is no launcher of ours.
std::optional<std::string> markOf(const std::string& path) {
    struct stat status {};
    std::string content;
    if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode) ||
        FileSystem::sharedInstance().readFile(path, content, longestLauncher) != 0)
        return std::nullopt;
    std::string_view rest = content;
    if (!rest.starts_with("[Desktop Entry]"))
        return std::nullopt;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        if (line.starts_with(markKey))
            return desktopEntry::unescaped(line.substr(markKey.size()));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    }
    return std::nullopt;
}

ChildProcess::Result runTool(std::vector<std::string> arguments) {
    return ChildProcess::run({.arguments = std::move(arguments), .environment = {}, .timeout = patience});
}

/// Absent where the tool is not there.
std::optional<std::string> checksumOf(const std::string& path) {
    const ChildProcess::Result result = runTool({"sha256sum", "--", path});
    std::string_view output = result.output;
    // A mark of a name that it has to escape.
    if (output.starts_with('\\'))
        output.remove_prefix(1);
    if (!result.succeeded() || output.size() < checksumLength)
        return std::nullopt;
    return std::string(output.substr(0, checksumLength));
}

/// False when nobody answers, so that the others need not be asked.
bool setMark(const std::string& path, const std::string& name, const std::string& value) {
    return !runTool({"gio", "set", "-t", "string", path, "metadata::" + name, value}).timedOut;
}

std::string fileAddress(std::string_view path) {
    constexpr std::string_view plain = "-._~/";
    std::string result = "file://";
    for (const char c : path) {
        const bool isAlphanumeric =
            (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (isAlphanumeric || plain.find(c) != std::string_view::npos)
            result += c;
        else
            result += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
    return result;
}

} // namespace

DropletLauncher::DropletLauncher(DropletBundle droplet, std::string programPath)
    : bundle(std::move(droplet)), program(std::move(programPath)) {}

std::string DropletLauncher::text() const {
    // Desktop entries are UTF-8 from end to end.
    const bool canNameBundle = text::isUtf8(bundle.path());
    const bool canNameProgram = text::isUtf8(program);
    std::string command = desktopEntry::quotedArgument(canNameProgram ? program : "tavrin");
    // Where the path can't be told, the place of the launcher has to do.
    if (canNameBundle)
        command += " --droplet " + desktopEntry::quotedArgument(bundle.path());
    command += " --launcher=%k %F";

    std::string result = "[Desktop Entry]\nType=Application\n";
    const auto add = [&result](std::string_view key, std::string_view value) {
        result += fmt::format("{}={}\n", key, desktopEntry::escaped(value));
    };
    add("Name", shownName(bundle.name()));
    add("Comment", "Drop files here to rename them");
    add("Icon", canNameBundle ? bundle.iconPath() : "net.calderwick.tavrin");
    if (canNameProgram)
        add("TryExec", program);
    add("Exec", command);
    add("Terminal", "false");
    add("StartupNotify", "true");
    add("Categories", "Utility;");
    result += fmt::format("{}{}\n", markKey, canNameBundle ? desktopEntry::escaped(bundle.path()) : "");
    return result;
}

bool DropletLauncher::mayBeWritten() const {
    std::error_code error;
    const auto kind = std::filesystem::symlink_status(bundle.launcherPath(), error).type();
    return kind == std::filesystem::file_type::not_found || isLauncher(bundle.launcherPath());
}

std::optional<std::string> DropletLauncher::write() const {
    const std::string path = bundle.launcherPath();
    if (!mayBeWritten())
        return fmt::format("{}: there is another file in the launcher's place", path);
    int error = FileSystem::sharedInstance().writeFileAtomically(path, text());
    if (error == 0 && ::chmod(path.c_str(), 0755) != 0)
        error = errno;
    if (error != 0)
        return fmt::format("{}: {}", path, std::generic_category().message(error));
    return std::nullopt;
}

void DropletLauncher::setTrustMarks() const {
    const std::string path = bundle.launcherPath();
    const std::optional<std::string> checksum = checksumOf(path);
    if (checksum && !setMark(path, "xfce-exe-checksum", *checksum))
        return;
    if (setMark(path, "trusted", "true"))
        (void)setMark(bundle.path(), "custom-icon", fileAddress(bundle.iconPath()));
}

bool DropletLauncher::isLauncher(const std::string& path) { return markOf(path).has_value(); }

std::optional<DropletBundle> DropletLauncher::bundleOf(const std::string& path) {
    const std::optional<std::string> named = markOf(path);
    if (!named)
        return std::nullopt;
    if (named->starts_with('/') && DropletBundle(*named).isFolder())
        return DropletBundle(*named);
    const DropletBundle beside = bundleBeside(path);
    return beside.isFolder() ? std::optional(beside) : std::nullopt;
}

DropletBundle DropletLauncher::bundleBeside(const std::string& path) {
    constexpr std::string_view suffix = ".desktop";
    return DropletBundle((path.ends_with(suffix) ? path.substr(0, path.size() - suffix.size()) : path) +
                         ".app");
}

} // namespace tavrin
