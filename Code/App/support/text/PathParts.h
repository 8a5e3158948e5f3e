#pragma once

#include <algorithm>
#include <string>
#include <string_view>

// The one place that cuts paths into folders, names and extensions, and joins them. Views are into the path
// given.

namespace tavrin {

/// What stands before the last component, with its slash; empty without a slash.
[[nodiscard]] inline std::string_view folderPrefix(std::string_view path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// Empty where the path ends with a slash.
[[nodiscard]] inline std::string_view lastComponent(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// A path cut before its last component.
struct PathParts {
    std::string_view folder; ///< without its slash; "/" for what lies in the root, empty without a slash
    std::string_view name;

    explicit PathParts(std::string_view path) : folder(folderPrefix(path)), name(lastComponent(path)) {
        if (folder.size() > 1)
            folder.remove_suffix(1);
    }
};

[[nodiscard]] inline std::string joinedPath(std::string_view folder, std::string_view name) {
    std::string path;
    path.reserve(folder.size() + 1 + name.size());
    path = folder;
    if (folder != "/")
        path += '/';
    path += name;
    return path;
}

/// The deepest folder that is or holds each of two absolute folders.
[[nodiscard]] inline std::string_view commonFolder(std::string_view first, std::string_view second) {
    const auto isInside = [](std::string_view path, std::string_view folder) {
        return path.starts_with(folder) &&
               (path.size() == folder.size() || folder == "/" || path[folder.size()] == '/');
    };
    while (!isInside(second, first))
        first = PathParts(first).folder;
    return first;
}

/// A path or name up to the last dot of its last component, unless that begins with it.
[[nodiscard]] inline std::string_view withoutExtension(std::string_view path) {
    const std::size_t dot = path.rfind('.');
    return dot != path.npos && dot > folderPrefix(path).size() ? path.substr(0, dot) : path;
}

/// What stands behind that dot; empty where there is none.
[[nodiscard]] inline std::string_view extensionOf(std::string_view path) {
    return path.substr(std::min(withoutExtension(path).size() + 1, path.size()));
}

} // namespace tavrin
