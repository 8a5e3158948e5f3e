#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// The texts of a run of rows, one behind the other in one buffer. A text is bytes, or, where bytes cannot
/// hold it, UTF-16 code units ("wide"), or absent.
class TextRegion {
  public:
    struct Text {
        std::string_view bytes; ///< for a wide text its code units in memory order
        bool isWide = false;
    };

    explicit TextRegion(std::size_t count = 0) : slots(count) {}

    [[nodiscard]] std::size_t count() const { return slots.size(); }
    [[nodiscard]] bool has(std::size_t index) const { return slots[index].offset != absent; }
    /// Empty when absent. Valid until the region changes.
    [[nodiscard]] Text get(std::size_t index) const;
    void set(std::size_t index, Text text);
    void clear(std::size_t index);
    /// Makes all texts absent; the memory is kept.
    void clearAll();
    /// Bytes of memory held.
    [[nodiscard]] std::size_t footprint() const;

    /// The texts `first` to `first` + `count` as a region of their own.
    [[nodiscard]] TextRegion slice(std::size_t first, std::size_t count) const;

    void appendBlob(std::string& blob) const;
    /// False when the bytes are no region of `count` texts.
    [[nodiscard]] bool readBlob(std::string_view blob, std::size_t count);

  private:
    static constexpr std::uint32_t absent = 0xFFFFFFFF;
    static constexpr std::uint32_t wideBit = 0x80000000;
    struct Slot {
        std::uint32_t offset = absent;
        std::uint32_t length = 0; // with wideBit
        [[nodiscard]] std::uint32_t bytes() const { return length & ~wideBit; }
    };

    void append(Slot& slot, std::string_view bytes);
    void compactIfWasteful();

    std::vector<Slot> slots;
    std::string buffer;
    std::size_t garbage = 0;
};

} // namespace tavrin
