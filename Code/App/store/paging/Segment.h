#pragma once

#include "store/paging/TextRegion.h"
#include "store/rows/NodeRow.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The rows of 4096 consecutive ids with their texts: the unit that is kept in memory or paged out.
struct Segment {
    static constexpr std::size_t capacity = 4096;
    enum Part : std::uint8_t { rowPart, namePart, finalPart, regexPart };
    static constexpr std::size_t partCount = 4;

    Segment() : rows(capacity), names(capacity), finals(capacity) {}

    static constexpr std::uint32_t number(RowId id) { return id / capacity; }
    static constexpr std::size_t index(RowId id) { return id % capacity; }

    /// The part's bytes; `scratch` is where they may lie.
    [[nodiscard]] std::string_view blob(Part part, std::string& scratch) const;
    [[nodiscard]] bool readBlob(Part part, std::string_view bytes);
    /// As new, with most of its memory kept.
    void clear();
    [[nodiscard]] std::size_t footprint() const;

    [[nodiscard]] bool hasRegex() const { return regex.count() > 0; }
    /// Empty when the row has none.
    [[nodiscard]] std::string_view regexAt(std::size_t index) const {
        return hasRegex() ? regex.get(index).bytes : std::string_view();
    }
    void setRegex(std::size_t index, std::string_view columns);

    std::vector<NodeRow> rows;
    TextRegion names;  ///< path components as the file system gives them
    TextRegion finals; ///< absent while finalName equals name
    TextRegion
        regex; ///< the columns of an expression, encoded by who stages them; no slots while no row has any
    std::array<bool, partCount> dirty{};
    std::uint64_t lastUse = 0;
};

} // namespace tavrin
