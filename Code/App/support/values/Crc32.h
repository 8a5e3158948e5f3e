#pragma once

#include <cstdint>
#include <string_view>

namespace tavrin {

/// The checksum of zip files and PNG pictures over `bytes`, going on from that of what came before them.
[[nodiscard]] std::uint32_t crc32(std::string_view bytes, std::uint32_t before = 0);

} // namespace tavrin
