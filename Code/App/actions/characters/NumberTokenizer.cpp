#include "actions/characters/NumberTokenizer.h"

namespace tavrin {

void NumberTokenizer::tokenize(std::u16string_view string) {
    for (std::size_t at = 0; at < string.size(); ++at) {
        const auto start = at;
        while (at < string.size() && isDigit(string[at]))
            ++at;
        if (at > start)
            blocks.push_back({start, at - start});
    }
}

std::optional<TextRange> NumberTokenizer::getNumberTokenRangeFromLeft(std::int64_t index) const {
    if (index < 0 || index >= static_cast<std::int64_t>(blocks.size()))
        return std::nullopt;
    return blocks[static_cast<std::size_t>(index)];
}

std::optional<TextRange> NumberTokenizer::getNumberTokenRangeFromRight(std::int64_t index) const {
    return getNumberTokenRangeFromLeft(static_cast<std::int64_t>(blocks.size()) - 1 - index);
}

} // namespace tavrin
