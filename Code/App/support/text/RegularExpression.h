#pragma once

#include "support/text/TextSearch.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// A compiled ICU regular expression. Make one per run, use it per name; one object belongs to one thread.
///
/// No name can hang a run: an operation that takes too long, a search and all its replacements together,
/// fails. What counts is the work done and not the clock, so that a name fares alike in every run; each
/// failure for this reason halves what the following operations may take, down to a floor that is ample for
/// names which the pattern suits.
class RegularExpression {
  public:
    /// The most code units that a pattern, a subject, a replacement or a result may have: no name comes near.
    static constexpr std::size_t mostUnits = 16384;

    /// The empty pattern, which ICU refuses.
    RegularExpression();
    /// Of a pattern that ICU refuses every operation fails.
    RegularExpression(std::u16string_view pattern, CaseSensitivity sensitivity);
    RegularExpression(RegularExpression&&) noexcept;
    RegularExpression& operator=(RegularExpression&&) noexcept;
    ~RegularExpression();

    /// Group 0, group 1 and so on of the first match, as views into the subject; a group that took no part is
    /// empty. No groups without a match and after a failure. Valid until the next call.
    [[nodiscard]] std::span<const std::u16string_view> captureComponentsMatched(std::u16string_view subject);

    /// Appends the subject with the matches that `mode` means (see isOccurrenceMeant) replaced by ICU's
    /// replacement text ("$1", a backslash escapes). False after a failure, with `result` as it was.
    [[nodiscard]] bool replaceOccurrences(std::u16string_view subject, std::u16string_view replacement,
                                          std::u16string& result, std::int32_t mode = 0);
    /// The same for the match of this index, counted from 0.
    [[nodiscard]] bool replaceMatch(std::u16string_view subject, std::u16string_view replacement,
                                    std::int64_t index, std::u16string& result);
    /// All matches, from left to right; none after a failure.
    [[nodiscard]] std::vector<TextRange> matches(std::u16string_view subject);

    /// Why the last operation failed, or why the pattern is refused before there was one; else empty.
    [[nodiscard]] std::string failure() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace tavrin
