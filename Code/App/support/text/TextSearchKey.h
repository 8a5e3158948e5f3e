#pragma once

#include "support/text/TextSearch.h"

#include <string>
#include <string_view>

namespace tavrin::text {

/// k(x) of TextSearch: two texts match as wholes exactly when their keys are equal.
std::u16string searchKey(std::u16string_view text, CaseSensitivity sensitivity);

/// Appends the key of one composed character sequence. The key of a text is the keys of its sequences in a
/// row, since no mark is reordered over the edge of a sequence.
void appendSequenceKey(std::u16string_view sequence, CaseSensitivity sensitivity, std::u16string& into);

/// The composed key of a text in which each unit is a composed character sequence with a composed key of one
/// unit, into a reused buffer: the key of place i is unit i. False for other texts and for some of these.
[[nodiscard]] bool unitwiseKey(std::u16string_view text, CaseSensitivity sensitivity, std::u16string& into);

} // namespace tavrin::text
