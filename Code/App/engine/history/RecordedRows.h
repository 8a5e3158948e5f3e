#pragma once

#include "store/rows/NodeRow.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tavrin {

/// The rows that stand in a record, in two bits each: which they are, and what number each has there.
class RecordedRows {
  public:
    /// By ascending id.
    void add(RowId row) {
        const std::size_t at = row / rowsOfPart;
        if (at >= parts.size())
            parts.resize(at + 1, {0, count});
        parts[at].rows |= bitOf(row);
        ++count;
    }
    /// Counted from 0; nothing where it is not among them.
    [[nodiscard]] std::optional<std::uint32_t> numberOf(RowId row) const {
        const std::size_t at = row / rowsOfPart;
        if (at >= parts.size() || (parts[at].rows & bitOf(row)) == 0)
            return std::nullopt;
        const int inPart = std::popcount(parts[at].rows & (bitOf(row) - 1));
        return parts[at].before + static_cast<std::uint32_t>(inPart);
    }

  private:
    static constexpr std::size_t rowsOfPart = 64;
    struct Part {
        std::uint64_t rows;
        std::uint32_t before; ///< how many stand in the parts before
    };
    static std::uint64_t bitOf(RowId row) { return std::uint64_t{1} << row % rowsOfPart; }

    std::vector<Part> parts;
    std::uint32_t count = 0;
};

} // namespace tavrin
