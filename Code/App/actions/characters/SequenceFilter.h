#pragma once

#include "support/text/Text.h"

#include <string>
#include <string_view>

namespace tavrin {

/// Appends the composed character sequences of the fragment for which `isKept` holds.
template <typename IsKept>
void appendSequences(std::u16string_view fragment, std::u16string& result, IsKept isKept) {
    const bool isPlain = text::isAscii(fragment) && fragment.find(u'\r') == fragment.npos;
    if (!isPlain) {
        for (const auto sequence : text::composedSequences(fragment))
            if (isKept(sequence))
                result += sequence;
        return;
    }
    for (std::size_t i = 0; i < fragment.size(); ++i)
        if (isKept(fragment.substr(i, 1)))
            result += fragment[i];
}

} // namespace tavrin
