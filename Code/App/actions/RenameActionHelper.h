#pragma once

#include "support/text/TextSearch.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// Finding an occurrence and inserting a text, for all actions that do so. The insertions append the new name
/// to `result`; the name comes unchanged where the text is absent, where the occurrence does not exist, and
/// where the position is out of range. Positions count UTF-16 code units.
struct RenameActionHelper {
    /// The search option that a parameter like `ignoreCase` stands for: only 1 ignores case.
    [[nodiscard]] static CaseSensitivity sensitivity(std::int32_t ignoreCase) {
        return ignoreCase == 1 ? CaseSensitivity::insensitive : CaseSensitivity::sensitive;
    }

    /// The location of an occurrence, -1 if there is none. Modes 0 to 5 are the first to the sixth from the
    /// front, 6 and above the last, the second to last and so on. Matches never overlap.
    [[nodiscard]] static std::int32_t findInsertionPointIn(std::u16string_view name, const TextSearch& search,
                                                           std::int32_t mode);

    static void insertInFrontOfExistingText(std::optional<std::u16string_view> text, std::u16string_view into,
                                            const TextSearch& search, std::int32_t mode,
                                            std::u16string& result);
    /// Behind the occurrence: its location plus the length of the text sought, also where the match has
    /// another length.
    static void insertAfterExistingText(std::optional<std::u16string_view> text, std::u16string_view into,
                                        const TextSearch& search, std::int32_t mode, std::u16string& result);
    /// Mode 0 counts the position from the front, any other from the end.
    static void insertAtPosition(std::optional<std::u16string_view> text, std::u16string_view into,
                                 std::int32_t position, std::int32_t mode, std::u16string& result);
};

} // namespace tavrin
