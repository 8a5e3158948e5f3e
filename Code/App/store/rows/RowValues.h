#pragma once

#include <cstdint>

namespace tavrin {

/// A set of those values of a row that cost a look at the item, and are read when somebody goes by them.
enum class RowValues : std::uint8_t {
    none = 0,
    ofStatus = 1,     ///< dates, and the size of what is no folder
    folderSize = 2,   ///< what is in a folder, where the settings want it summed
    shootingDate = 4, ///< where the settings want it read
    all = 7
};

constexpr RowValues operator|(RowValues a, RowValues b) {
    return static_cast<RowValues>(static_cast<std::uint8_t>(a) | static_cast<std::uint8_t>(b));
}
constexpr RowValues& operator|=(RowValues& a, RowValues b) { return a = a | b; }
/// Those of the first that are not in the second.
constexpr RowValues operator-(RowValues a, RowValues b) {
    return static_cast<RowValues>(static_cast<std::uint8_t>(a) & ~static_cast<std::uint8_t>(b));
}
/// Whether the first has all of the second.
constexpr bool holds(RowValues set, RowValues wanted) { return wanted - set == RowValues::none; }

} // namespace tavrin
