#include "actions/PaddedNumber.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tavrin {

namespace {

constexpr std::int32_t widest = 1024;

} // namespace

void appendPaddedNumber(std::int32_t number, std::int32_t padding, std::u16string& result) {
    std::array<char, 16> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const char* begin = digits.data();
    const auto length = end - begin;
    const auto width = std::clamp(padding, -widest, widest);
    if (*begin == '-' && width >= 0)
        result += static_cast<char16_t>(*begin++);
    if (width > length)
        result.append(static_cast<std::size_t>(width - length), u'0');
    result.append(begin, end);
    if (-width > length)
        result.append(static_cast<std::size_t>(-width - length), u' ');
}

} // namespace tavrin
