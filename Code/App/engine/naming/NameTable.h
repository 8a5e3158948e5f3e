#pragma once

#include "store/rows/NameSlots.h"
#include "store/rows/NodeRow.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace tavrin {

class StoreContext;

/// Hashes of names that are equal where the names are one apart from case. Most names are ASCII, and hashed
/// as bytes, however they are held.
class CaselessHash {
  public:
    std::uint32_t of(std::u16string_view name);
    /// Of a name that is lower-cased already.
    std::uint32_t ofKey(std::u16string_view key);
    /// Of a name in bytes, which are ASCII and hold no NUL.
    std::uint32_t ofAscii(std::string_view name);

  private:
    NameSlots slots; ///< whose hashes they are
    std::string buffer;
};

/// The final names of a folder's children, apart from case: which of them collide, and which are in use while
/// the collisions are settled. Holds about 16 bytes per child: the names themselves are looked at in the
/// rows, and only where their hashes are equal.
class NameTable {
  public:
    /// Children whose names are one apart from case, in reading order.
    using Group = std::vector<RowId>;

    /// Hashes of final names, by id; 0 or missing where they are not known.
    using Hashes = std::vector<std::uint32_t>;

    explicit NameTable(StoreContext& storeContext, Hashes knownHashes = {})
        : context(storeContext), hashes(std::move(knownHashes)) {}

    /// Reads the names of the children. From then on the final names of rows that are in no group must not
    /// change.
    void read(const std::vector<RowId>& children);
    /// Two or more members each, in the order of their first members.
    [[nodiscard]] std::vector<Group> takeGroups();

    [[nodiscard]] bool isTaken(std::u16string_view name);
    /// Marks the final name of a row as in use; it must not change any more.
    void add(RowId id);

  private:
    struct NamedGroup {
        std::u16string key; ///< stays in use when its members have moved on
        Group members;
    };

    /// The lower-cased final name of a row, valid until the next call.
    std::u16string_view keyOf(RowId id);
    std::uint32_t hashOf(RowId id);
    void readBatch(std::span<const RowId> children);
    /// The entry with this hash and key, or 0. The key is asked for only where the hash is found.
    template <typename Key> std::uint32_t find(std::uint32_t hash, Key key);
    [[nodiscard]] bool isKeyOf(std::uint32_t entry, std::u16string_view key);
    void addEntry(RowId id, std::uint32_t hash);
    void addMember(std::uint32_t entry, RowId id);

    StoreContext& context;
    std::vector<RowId> rows; ///< by entry, from 1: the row that bears the name, the first of a group
    NameSlots entries;
    std::unordered_map<std::uint32_t, NamedGroup> groups; ///< by entry
    std::u16string nameBuffer;
    std::u16string keyBuffer;
    std::u16string soughtKey;
    const Hashes hashes; ///< of names as they were at first
    CaselessHash hasher;
    std::string byteBuffer;
};

} // namespace tavrin
