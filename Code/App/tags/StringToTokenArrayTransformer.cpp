#include "tags/StringToTokenArrayTransformer.h"

#include "tags/TagLibraryHelper.h"

namespace tavrin {

std::optional<std::vector<std::u16string>>
StringToTokenArrayTransformer::transformedValue(const std::optional<std::u16string>& pattern) {
    if (!pattern || pattern->empty())
        return std::nullopt;
    return TagLibraryHelper::decomposeStringIntoTokenArray(*pattern);
}

std::u16string StringToTokenArrayTransformer::reverseTransformedValue(
    const std::optional<std::vector<std::u16string>>& tokens) {
    std::u16string pattern;
    if (tokens)
        for (const std::u16string& token : *tokens)
            pattern += token;
    return pattern;
}

} // namespace tavrin
