#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// How a list file is read. Pipes, devices and the like are never opened.
/// Paths are bytes.
struct ListFile {
    /// More than this is never read.
    static constexpr std::size_t sizeLimit = 256 * 1024 * 1024;
    static constexpr int maximumLines = 500000;

    /// The content without a byte order mark, or why there is none.
    struct Content {
        std::string bytes;
        std::string problem; ///< a sentence for the user; empty where the content was read
    };
    [[nodiscard]] static Content read(const std::string& path);
};

/// Gives the fields of a list one by one. The bytes are UTF-8 and must outlive it.
class ListScanner {
  public:
    explicit ListScanner(std::string_view bytes) : rest(bytes) {}

    /// Skips white space and line ends; true when nothing else is left.
    [[nodiscard]] bool isAtEnd();
    /// What comes before the next tab, which is skipped; absent when the line or the list ends before.
    [[nodiscard]] std::optional<std::string_view> fieldBeforeTab();
    [[nodiscard]] std::string_view fieldBeforeLineEnd();

  private:
    std::string_view rest;
};

} // namespace tavrin
