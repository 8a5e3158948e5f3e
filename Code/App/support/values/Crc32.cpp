#include "support/values/Crc32.h"

#include <array>

namespace tavrin {

namespace {

constexpr std::uint32_t polynomial = 0xEDB88320; // bits in reverse

constexpr std::array<std::uint32_t, 256> makeTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
        std::uint32_t rest = byte;
        for (int bit = 0; bit < 8; ++bit)
            rest = (rest >> 1) ^ ((rest & 1) != 0 ? polynomial : 0);
        table[byte] = rest;
    }
    return table;
}

constexpr std::array<std::uint32_t, 256> table = makeTable();

} // namespace

std::uint32_t crc32(std::string_view bytes, std::uint32_t before) {
    std::uint32_t rest = ~before;
    for (const char c : bytes)
        rest = table[(rest ^ static_cast<unsigned char>(c)) & 0xFF] ^ (rest >> 8);
    return ~rest;
}

} // namespace tavrin
