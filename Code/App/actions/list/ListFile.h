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

/// Turns the bytes of a field, or of a name that is looked for in a list, into the text that is compared and
/// stored. Keep one for many: it has the buffers.
class ListField {
  public:
    /// The longest fields, in UTF-16 code units.
    static constexpr std::size_t longestFileName = 1024;
    static constexpr std::size_t longestNewName = 256;

    /// The text in form C, before that in lower case where asked; valid until the next call.
    [[nodiscard]] std::u16string_view normalized(std::string_view bytes, bool inLowerCase);
    /// The text as it stands; valid until the next call.
    [[nodiscard]] std::u16string_view decoded(std::string_view bytes);
    /// Whether the text has more code units than that.
    [[nodiscard]] bool isLonger(std::string_view bytes, std::size_t units);

    /// Without the quotes that a field begins and ends with, where it has no others.
    [[nodiscard]] static std::string_view unquoted(std::string_view field);
    /// What no new name may hold: it would be no single name or no single field.
    [[nodiscard]] static bool hasForbiddenCharacter(std::string_view newName);

  private:
    std::string lowered;
    std::u16string text;
};

} // namespace tavrin
