#pragma once

#include "support/text/Text.h"

#include <string>
#include <string_view>

namespace tavrin {

/// A text in normalization form C, copied only where it is not in that form already. The source must outlive
/// it.
class PrecomposedText {
  public:
    explicit PrecomposedText(std::u16string_view source) : text(source) {
        if (!text::isPrecomposed(source)) {
            copy = text::precomposed(source);
            text = copy;
        }
    }
    PrecomposedText(const PrecomposedText&) = delete;
    PrecomposedText& operator=(const PrecomposedText&) = delete;

    [[nodiscard]] std::u16string_view view() const { return text; }

  private:
    std::u16string copy;
    std::u16string_view text;
};

} // namespace tavrin
