#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// An array of many texts in one piece of memory. It holds 4 G code units at most.
class TextColumn {
  public:
    /// Makes room, in code units.
    void reserve(std::size_t capacity) { units.reserve(capacity); }
    void append(std::u16string_view text) {
        if (text.size() > std::numeric_limits<std::uint32_t>::max() - units.size())
            throw std::length_error("a column of texts is full");
        units += text;
        ends.push_back(static_cast<std::uint32_t>(units.size()));
    }
    /// Valid until the next change.
    [[nodiscard]] std::u16string_view operator[](std::size_t index) const {
        const std::size_t begin = index == 0 ? 0 : ends[index - 1];
        return std::u16string_view(units).substr(begin, ends[index] - begin);
    }
    [[nodiscard]] std::size_t size() const { return ends.size(); }
    [[nodiscard]] bool empty() const { return ends.empty(); }

  private:
    std::u16string units;
    std::vector<std::uint32_t> ends;
};

} // namespace tavrin
