#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace tavrin::text {

/// Whether all bytes are from 1 to 127, so that their text has one unit for each, and nothing to compose.
inline bool isAsciiWithoutNul(std::string_view bytes) {
    constexpr std::uint64_t ones = 0x0101010101010101;
    constexpr std::uint64_t highBits = ones << 7;
    std::uint64_t found = 0;
    std::size_t at = 0;
    for (; at + sizeof ones <= bytes.size(); at += sizeof ones) {
        std::uint64_t word;
        std::memcpy(&word, bytes.data() + at, sizeof word);
        found |= word | (word - ones); // a byte of 0 borrows
    }
    for (; at < bytes.size(); ++at)
        found |= bytes[at] <= 0 ? highBits : 0;
    return (found & highBits) == 0;
}

} // namespace tavrin::text
