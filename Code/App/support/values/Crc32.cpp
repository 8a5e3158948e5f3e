#include "support/values/Crc32.h"

#include <array>
#include <cstddef>

namespace tavrin {

namespace {

constexpr std::uint32_t polynomial = 0xEDB88320; // bits in reverse
constexpr std::size_t width = 8;                 // bytes that are taken at once

/// Of each byte what it leaves when 0 to 7 more bytes have gone through.
constexpr std::array<std::array<std::uint32_t, 256>, width> makeTables() {
    std::array<std::array<std::uint32_t, 256>, width> tables{};
    for (std::uint32_t byte = 0; byte < tables[0].size(); ++byte) {
        std::uint32_t rest = byte;
        for (int bit = 0; bit < 8; ++bit)
            rest = (rest >> 1) ^ ((rest & 1) != 0 ? polynomial : 0);
        tables[0][byte] = rest;
    }
    for (std::size_t more = 1; more < width; ++more)
        for (std::size_t byte = 0; byte < tables[0].size(); ++byte) {
            const std::uint32_t before = tables[more - 1][byte];
            tables[more][byte] = tables[0][before & 0xFF] ^ (before >> 8);
        }
    return tables;
}

constexpr auto tables = makeTables();

} // namespace

std::uint32_t crc32(std::string_view bytes, std::uint32_t before) {
    std::uint32_t rest = ~before;
    const auto at = [&](std::size_t place) -> std::uint32_t {
        return static_cast<unsigned char>(bytes[place]) ^ (place < 4 ? (rest >> (8 * place)) & 0xFF : 0);
    };
    for (; bytes.size() >= width; bytes.remove_prefix(width)) {
        std::uint32_t next = 0;
        for (std::size_t place = 0; place < width; ++place)
            next ^= tables[width - 1 - place][at(place)];
        rest = next;
    }
    for (const char c : bytes)
        rest = tables[0][(rest ^ static_cast<unsigned char>(c)) & 0xFF] ^ (rest >> 8);
    return ~rest;
}

} // namespace tavrin
