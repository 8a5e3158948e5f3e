#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavrin {

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
