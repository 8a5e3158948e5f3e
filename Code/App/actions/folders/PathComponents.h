#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace tavrin {

/// Goes through the components of a path from the last to the first, without making a list of them. Empty
/// ones count for nothing; the first component of an absolute path is "/".
class PathComponents {
  public:
    /// The path must outlive it.
    explicit PathComponents(std::string_view path) : rest(path) {}

    /// The component in front of the one given before, absent when that was the first.
    [[nodiscard]] std::optional<std::string_view> previous() {
        const std::size_t end = rest.find_last_not_of('/');
        if (end == std::string_view::npos) {
            const std::string_view root = rest.substr(0, 1);
            rest = {};
            return root.empty() ? std::nullopt : std::optional(root);
        }
        const std::size_t slash = rest.rfind('/', end);
        const std::size_t begin = slash == std::string_view::npos ? 0 : slash + 1;
        const std::string_view component = rest.substr(begin, end + 1 - begin);
        rest = rest.substr(0, begin);
        return component;
    }
    /// Whether the component given last is the first of the path.
    [[nodiscard]] bool isAtFirst() const { return rest.empty(); }

  private:
    std::string_view rest; ///< what lies in front of the component given last
};

} // namespace tavrin
