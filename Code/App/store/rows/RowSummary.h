#pragma once

#include "store/rows/NodeRow.h"

#include <cstdint>

namespace tavrin {

/// The part of a row that filters ask for, one byte a row and always in memory, so that counting and
/// filtering never page. It alone tells whether a row exists.
namespace rowSummary {
inline constexpr std::uint8_t none = 0;
inline constexpr std::uint8_t isFile = 1;
inline constexpr std::uint8_t isGhostNode = 2;
inline constexpr std::uint8_t treatAsFolder = 4;
inline constexpr std::uint8_t root = 8;
inline constexpr std::uint8_t diff = 16;
inline constexpr std::uint8_t sortingInformationLoaded = 32;

constexpr std::uint8_t of(const NodeRow& row) {
    if (row.entity == NodeEntity::none)
        return none;
    return static_cast<std::uint8_t>((row.entity == NodeEntity::file ? isFile : isGhostNode) |
                                     (row.treatAsFolder ? treatAsFolder : 0) | (row.root ? root : 0) |
                                     (row.diff ? diff : 0) |
                                     (row.sortingInformationLoaded ? sortingInformationLoaded : 0));
}
} // namespace rowSummary

} // namespace tavrin
