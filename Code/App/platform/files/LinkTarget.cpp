#include "platform/files/LinkTarget.h"

#include <filesystem>

namespace tavrin {

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
