#pragma once

#include "store/paging/TextRegion.h"
#include "store/rows/NodeRow.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class SegmentTable;
struct Segment;

/// Copies of a stretch of a sorted list of rows, for walks through the store in an order that is not that of
/// the ids: the rows are gathered in one sweep over the segments, so that neither blocks of neighbours nor
/// segments are read again for each row.
class RowImages {
  public:
    /// Rows gathered at a time: about 10 MB.
    static constexpr std::size_t capacity = 65536;

    struct Image {
        NodeRow row;
        RowId id = noRow;
        std::uint32_t component = 0;
        std::uint32_t final = 0;
        std::uint32_t componentLength = 0;
        std::uint32_t finalLength = 0;
        std::uint32_t regex = 0;
        std::uint32_t regexLength = 0; ///< 0 for a row without columns
        bool hasFinal = false;
        bool finalIsWide = false;
    };

    /// Null when the row is not here. Valid until the next gather or clear.
    Image* find(RowId id);
    [[nodiscard]] std::string_view component(const Image& image) const {
        return std::string_view(texts).substr(image.component, image.componentLength);
    }
    [[nodiscard]] TextRegion::Text finalName(const Image& image) const {
        return {std::string_view(texts).substr(image.final, image.finalLength), image.finalIsWide};
    }

    [[nodiscard]] std::string_view regex(const Image& image) const {
        return std::string_view(texts).substr(image.regex, image.regexLength);
    }

    /// Takes the rows at these ids, which must exist, as they come in the walk. The store's lock is held.
    void gather(const std::vector<RowId>& ids, SegmentTable& segments);
    void clear();
    [[nodiscard]] bool isEmpty() const { return images.empty(); }

  private:
    void take(Image& image, const Segment& segment, std::size_t index);
    void insertIntoTable(std::uint32_t index);

    std::vector<Image> images; ///< in the order of the walk
    std::size_t last = 0;      ///< found last: the walk asks for it again, or for the next
    std::string texts;
    std::vector<std::uint32_t> table; ///< index + 1 by hash of the id, open addressing
};

} // namespace tavrin
