#pragma once

#include "support/text/TextSearch.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tavrin {

/// The blocks of digits in a text, as many as there are. Only "0" to "9" count, no digits of other scripts.
class NumberTokenizer {
  public:
    explicit NumberTokenizer(std::u16string_view string) { tokenize(string); }

    [[nodiscard]] static bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
    [[nodiscard]] std::size_t numberOfBlocks() const { return blocks.size(); }
    /// Counted from 0; absent where there is no such block.
    [[nodiscard]] std::optional<TextRange> getNumberTokenRangeFromLeft(std::int64_t index) const;
    [[nodiscard]] std::optional<TextRange> getNumberTokenRangeFromRight(std::int64_t index) const;

  private:
    void tokenize(std::u16string_view string);

    std::vector<TextRange> blocks;
};

} // namespace tavrin
