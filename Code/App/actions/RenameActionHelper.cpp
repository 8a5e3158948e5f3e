#include "actions/RenameActionHelper.h"

namespace tavrin {

namespace {

constexpr std::int32_t firstModeFromEnd = 6;

std::int32_t findFromFront(std::u16string_view name, const TextSearch& search, std::int32_t wanted) {
    std::size_t start = 0;
    for (std::int32_t found = 0; start < name.size(); ++found) {
        const auto match = search.first(name, {start, name.size() - start});
        if (!match)
            break;
        if (found == wanted)
            return static_cast<std::int32_t>(match->location);
        start = match->end();
    }
    return -1;
}

std::int32_t findFromEnd(std::u16string_view name, const TextSearch& search, std::int32_t wanted) {
    std::size_t end = name.size();
    for (std::int32_t found = 0; end > 0; ++found) {
        const auto match = search.last(name, {0, end});
        if (!match)
            break;
        if (found == wanted)
            return static_cast<std::int32_t>(match->location);
        end = match->location;
    }
    return -1;
}

/// An index past the end is out of range.
void insertAt(std::u16string_view text, std::u16string_view into, std::size_t index, std::u16string& result) {
    if (index > into.size()) {
        result += into;
        return;
    }
    result.append(into, 0, index).append(text).append(into, index);
}

} // namespace

std::int32_t RenameActionHelper::findInsertionPointIn(std::u16string_view name, const TextSearch& search,
                                                      std::int32_t mode) {
    if (mode < 0)
        return -1;
    return mode < firstModeFromEnd ? findFromFront(name, search, mode)
                                   : findFromEnd(name, search, mode - firstModeFromEnd);
}

void RenameActionHelper::insertInFrontOfExistingText(std::optional<std::u16string_view> text,
                                                     std::u16string_view into, const TextSearch& search,
                                                     std::int32_t mode, std::u16string& result) {
    const auto location = text ? findInsertionPointIn(into, search, mode) : -1;
    if (location < 0)
        result += into;
    else
        insertAt(*text, into, static_cast<std::size_t>(location), result);
}

void RenameActionHelper::insertAfterExistingText(std::optional<std::u16string_view> text,
                                                 std::u16string_view into, const TextSearch& search,
                                                 std::int32_t mode, std::u16string& result) {
    const auto location = text ? findInsertionPointIn(into, search, mode) : -1;
    if (location < 0)
        result += into;
    else
        insertAt(*text, into, static_cast<std::size_t>(location) + search.text().size(), result);
}

void RenameActionHelper::insertAtPosition(std::optional<std::u16string_view> text, std::u16string_view into,
                                          std::int32_t position, std::int32_t mode, std::u16string& result) {
    const auto offset = static_cast<std::uint32_t>(position); // negative: greater than any length
    if (!text || offset > into.size())
        result += into;
    else
        insertAt(*text, into, mode == 0 ? offset : into.size() - offset, result);
}

} // namespace tavrin
