#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string_view>
#include <utility>
#include <vector>

namespace tavrin {

/// A table of numbers (ids of rows, or a caller's own, but not 0) by the hash of a name: eight bytes a slot
/// and no text, so that a folder of a million children fits. The names are compared by who asks, where they
/// lie.
class NameSlots {
  public:
    /// Empties the table and makes room for so many numbers; there can be more.
    void reset(std::size_t expected) {
        used = 0;
        slots.assign(std::max(smallest, std::bit_ceil(expected + expected / 4)), {});
    }
    /// Empties the table; the memory of a big one is given back.
    void clear() {
        constexpr std::size_t worthKeeping = 4096;
        used = 0;
        slots.clear();
        if (slots.capacity() > worthKeeping)
            slots.shrink_to_fit();
    }

    /// Of a text of bytes or of UTF-16 code units. Seeded, so that no one can prepare names whose hashes are
    /// all alike.
    template <typename Unit> [[nodiscard]] std::uint32_t hashOf(std::basic_string_view<Unit> name) const {
        const Unit* at = name.data();
        std::size_t left = name.size() * sizeof(Unit);
        std::uint64_t hash = mixed(seed, left);
        std::uint64_t word = 0;
        for (; left >= sizeof word; left -= sizeof word, at += sizeof word / sizeof(Unit)) {
            std::memcpy(&word, at, sizeof word);
            hash = mixed(hash, word);
        }
        word = 0;
        std::memcpy(&word, at, left);
        return static_cast<std::uint32_t>(mixed(hash, word) >> 32);
    }
    /// Has the memory for this hash on its way.
    void prefetch(std::uint32_t hash) const { __builtin_prefetch(&slots[hash & (slots.size() - 1)]); }

    /// The first number with this hash that passes the test; null for none. Valid until the next `add`.
    template <typename Test> [[nodiscard]] std::uint32_t* find(std::uint32_t hash, Test isWanted) {
        return const_cast<std::uint32_t*>(std::as_const(*this).find(hash, isWanted));
    }
    template <typename Test>
    [[nodiscard]] const std::uint32_t* find(std::uint32_t hash, Test isWanted) const {
        if (slots.empty())
            return nullptr;
        for (std::size_t at = home(hash); slots[at].number != 0; at = next(at)) {
            if (slots[at].hash == hash && isWanted(slots[at].number))
                return &slots[at].number;
        }
        return nullptr;
    }
    void add(std::uint32_t hash, std::uint32_t number) {
        ++used;
        if (used + used / 3 > slots.size())
            grow();
        put({hash, number});
    }

  private:
    static constexpr std::size_t smallest = 16;
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t number = 0;
    };

    static std::uint64_t newSeed() {
        std::random_device device;
        return std::uint64_t{device()} << 32 | device();
    }
    /// Folds two words into one so that every bit of both counts.
    static std::uint64_t mixed(std::uint64_t a, std::uint64_t b) {
        a = (a ^ b) * 0x9E3779B97F4A7C15ULL;
        a ^= a >> 32;
        a *= 0xD6E8FEB86659FD93ULL;
        return a ^ (a >> 29);
    }
    [[nodiscard]] std::size_t home(std::uint32_t hash) const { return hash & (slots.size() - 1); }
    [[nodiscard]] std::size_t next(std::size_t at) const { return (at + 1) & (slots.size() - 1); }
    void grow() {
        const std::vector<Slot> former =
            std::exchange(slots, std::vector<Slot>(std::max(smallest, slots.size() * 2)));
        for (const Slot& slot : former) {
            if (slot.number != 0)
                put(slot);
        }
    }
    void put(Slot slot) {
        std::size_t at = home(slot.hash);
        while (slots[at].number != 0)
            at = next(at);
        slots[at] = slot;
    }

    inline static const std::uint64_t seed = newSeed();
    std::size_t used = 0;
    std::vector<Slot> slots; ///< open addressing; a power of two in size
};

} // namespace tavrin
