#pragma once

#include "store/paging/Segment.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tavrin {

class StoreFile;

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
    /// Takes this many bytes out of the budget for other things.
    void setReserve(std::size_t bytes) { reserve = bytes; }
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
