#pragma once

#include "store/queries/Predicate.h"
#include "store/rows/NodeKey.h"
#include "store/rows/NodeRow.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// What sort keys are made of.
struct SortedRow {
    RowId id = noRow;
    const NodeRow& row;
    std::string_view component;
    std::string_view finalName;   ///< for orders by it
    std::uint32_t folderRank = 0; ///< likewise: its place among all folders
};

/// Collects one key per row and sorts the rows by it. A key is a string of bytes whose byte order is the
/// order asked for, so that any order of any number of attributes is one comparison of memory.
class SortKeys {
  public:
    /// `secret` is that of the store's random keys.
    SortKeys(std::vector<SortDescriptor> newOrder, std::uint64_t newSecret)
        : order(std::move(newOrder)), secret(newSecret) {}

    /// Rows are added by ascending id. While they also come in order nothing is kept; false from the first
    /// one on that does not: then the rows must be added again, with every key kept.
    [[nodiscard]] bool addInOrder(const SortedRow& row);
    /// Starts over, with every key kept; the bytes of memory that it takes.
    std::size_t keepAll(std::size_t rows, std::size_t bytesOfNames);
    void add(const SortedRow& row);
    /// Puts the rows that were added in order; the keys are spent.
    void takeSorted(std::vector<RowId>& rows);

    [[nodiscard]] bool needs(NodeKey key) const;
    /// Adds a text to a key so that numbers within it order by their value.
    static void appendNaturalText(std::string& key, std::string_view text);

  private:
    struct Entry {
        std::uint64_t prefix;
        std::uint32_t place; // of the key in the arena, in words; its length stands before it
        RowId id;
    };
    [[nodiscard]] std::string_view keyAt(const Entry& entry) const;
    [[nodiscard]] std::size_t bytesBesideTexts() const;
    void appendKey(const SortedRow& row);
    void append(NodeKey key, const SortedRow& row);
    void appendNumber(std::uint64_t value, std::size_t bytes);
    void appendText(std::string_view text);
    [[nodiscard]] std::size_t commonPrefix() const;

    std::vector<SortDescriptor> order;
    std::uint64_t secret;
    std::string arena;
    std::string previous;
    bool isFirst = true;
    std::vector<Entry> entries;
};

} // namespace tavrin
