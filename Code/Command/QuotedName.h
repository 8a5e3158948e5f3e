#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// The text in double quotes, with an escape for all that would not survive an editor.
[[nodiscard]] std::u16string quotedName(std::u16string_view name);
/// What a text in double quotes stands for; absent where it is none from end to end.
[[nodiscard]] std::optional<std::u16string> unquotedName(std::u16string_view quoted);

} // namespace tavrin
