#include "platform/files/AbsolutePaths.h"

#include "platform/files/FileSystem.h"
#include "support/text/PathParts.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace tavrin {

namespace {

std::optional<std::string> resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? std::optional<std::string>(real.get()) : std::nullopt;
}

/// Without slashes and "." at the end, where something is left in front of them.
std::string_view trimmed(std::string_view path) {
    while (path.size() > 1) {
        if (path.back() == '/')
            path.remove_suffix(1);
        else if (path.ends_with("/."))
            path.remove_suffix(1);
        else
            break;
    }
    return path;
}

class PathResolver {
  public:
    std::string absolute(const std::string& given) {
        const std::string_view path = trimmed(given);
        const std::string_view name = lastComponent(path);
        if (name == "." || name == ".." || name.empty())
            return given.empty() ? given : resolved(std::string(path)).value_or(given);
        const std::string_view folder = folderPrefix(path);
        const std::optional<std::string>& place = resolvedFolder(std::string(folder.empty() ? "." : folder));
        if (!place)
            return given;
        return joinedPath(*place, name);
    }

  private:
    const std::optional<std::string>& resolvedFolder(std::string folder) {
        const auto known = folders.find(folder);
        if (known != folders.end())
            return known->second;
        std::optional<std::string> place = resolveFolder(folder);
        return folders.emplace(std::move(folder), std::move(place)).first->second;
    }

    /// From the folder that it lies in, so that a tree costs a look at each of its folders, not at all that
    /// lies above them as well.
    std::optional<std::string> resolveFolder(const std::string& folder) {
        const std::string_view path = trimmed(folder);
        const std::string_view name = lastComponent(path);
        if (name == "." || name == ".." || name.empty())
            return resolved(folder);
        const std::string_view above = folderPrefix(path);
        const std::optional<std::string>& place = resolvedFolder(std::string(above.empty() ? "." : above));
        if (!place)
            return std::nullopt;
        std::string candidate = joinedPath(*place, name);
        FileStatus status;
        if (FileSystem::sharedInstance().status(candidate, status) != 0)
            return std::nullopt;
        return status.kind == FileStatus::Kind::link ? resolved(candidate) : candidate;
    }

    std::unordered_map<std::string, std::optional<std::string>> folders;
};

} // namespace

std::vector<std::string> absolutePaths(const std::vector<std::string>& given,
                                       const std::function<bool()>& isToStop) {
    PathResolver resolver;
    std::vector<std::string> paths;
    paths.reserve(given.size());
    for (const std::string& path : given) {
        if (isToStop && isToStop())
            break;
        paths.push_back(resolver.absolute(path));
    }
    return paths;
}

std::string linkTarget(const std::string& path) {
    constexpr int mostLinks = 40; // as many as the kernel follows
    std::filesystem::path target = path;
    for (int links = 0; links < mostLinks; ++links) {
        std::error_code error;
        const std::filesystem::path next = std::filesystem::read_symlink(target, error);
        if (error)
            return target.string();
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return path;
}

} // namespace tavrin
