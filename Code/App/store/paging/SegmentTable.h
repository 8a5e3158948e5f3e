#pragma once

#include "store/paging/TextRegion.h"
#include "store/rows/NodeRow.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

class StoreFile;

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

/// The segments of a store: all in memory without a file, the most recently used within a budget with one.
/// A file that refuses lifts the budget: what can't be written stays in memory. Not thread-safe: the store's
/// lock guards it.
class SegmentTable {
  public:
    /// `file` is not owned and null without one; the budget is in bytes.
    SegmentTable(StoreFile* newFile, std::size_t newBudget) : file(newFile), budget(newBudget) {}

    /// While one lives nothing is evicted, so that segments stay where they are.
    class Hold {
      public:
        explicit Hold(SegmentTable& held) : table(held) { ++table.holds; }
        ~Hold() { --table.holds; }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

      private:
        SegmentTable& table;
    };

    /// The segment, read from the file where needed. Throws StoreError when it cannot be read, and for one
    /// that does not exist. Valid until the next call.
    Segment& use(std::uint32_t number);
    /// Makes an empty segment where there is none.
    void create(std::uint32_t number);
    [[nodiscard]] bool exists(std::uint32_t number) const;
    void drop(std::uint32_t number);

    /// Whether the segment holds columns of expressions, without reading it.
    [[nodiscard]] bool hasRegex(std::uint32_t number) const;

    /// Writes and evicts the segments used longest ago until the budget holds.
    void makeRoom();
    /// Takes this many bytes out of the budget for other things, until it is 0 again.
    void setReserve(std::size_t bytes);
    /// Goes on without the file: what is not in memory is gone.
    void leaveFile() { file = nullptr; }

  private:
    struct Entry {
        std::unique_ptr<Segment> resident;
        bool exists = false;
        bool hasRegex = false; ///< while it is not resident
    };
    [[nodiscard]] std::size_t residentBytes() const;
    /// Whether all of them are in the file now.
    [[nodiscard]] bool write(const std::vector<std::uint32_t>& numbers);
    void read(std::uint32_t number, bool hasRegex, Segment& into);
    std::vector<std::uint32_t> residentByAge() const;
    std::unique_ptr<Segment> freshSegment();
    void keepSpare(std::unique_ptr<Segment> segment);

    StoreFile* file;
    std::size_t budget;
    std::vector<Entry> entries;
    std::vector<std::unique_ptr<Segment>> spares; ///< so that paging does not tear the heap to pieces
    std::uint64_t clock = 0;
    int holds = 0;
    std::size_t reserve = 0;
};

} // namespace tavrin
