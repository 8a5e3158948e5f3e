#pragma once

#include <string>
#include <string_view>

namespace tavrin {

/// An absolute path cut before its last component.
struct PathParts {
    std::string_view folder; ///< "/" for what lies in the root
    std::string_view name;

    explicit PathParts(std::string_view path) {
        const std::size_t slash = path.rfind('/');
        folder = path.substr(0, slash == 0 ? 1 : slash);
        name = path.substr(slash + 1);
    }
};

inline std::string joinedPath(std::string_view folder, std::string_view name) {
    std::string path;
    path.reserve(folder.size() + 1 + name.size());
    path = folder;
    if (folder != "/")
        path += '/';
    path += name;
    return path;
}

} // namespace tavrin
